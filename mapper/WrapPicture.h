#pragma once

#include "host/pavix/IVideoFrame.h"
#include "mapper/Picture.h"

namespace Quillon::Mapper {

/// A frame that shows the caller's memory.
Result<PX::VideoFrameRef> WrapPicture(const Picture& picture, const ColorDescription& colors);

/// A picture in memory of its own, which lives as long as the frame.
struct OwnPicture {
  PX::VideoFrameRef frame;
  Picture picture;
};
Result<OwnPicture> MakePicture(const PixelFormat& format, int width, int height,
                               const ColorDescription& colors);

/// The same memory, for frames that are only read.
Picture Writable(const ConstPicture& picture);

Failure CheckSameSize(const ConstPicture& one, const Picture& other);

}  // namespace Quillon::Mapper
