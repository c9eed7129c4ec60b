#pragma once

#include "host/pavix/IVideoFrame.h"
#include "mapper/Picture.h"

namespace Quillon::Mapper {

/// A frame that shows the caller's memory.
Result<PX::VideoFrameRef> WrapPicture(const Picture& picture, const ColorDescription& colors);

/// There is no memory for a frame, or it is too large.
Error NoFrame(int width, int height);

/// A frame in memory of its own, of another one's format, width and colour space.
Result<PX::VideoFrameRef> MakeFrameLike(const PX::VideoFrameRef& frame, int height);

/// The same memory, for frames that are only read.
Picture Writable(const ConstPicture& picture);

Failure CheckSameSize(const ConstPicture& one, const Picture& other);

}  // namespace Quillon::Mapper
