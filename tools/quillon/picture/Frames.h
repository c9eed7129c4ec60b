#pragma once

#include <cstddef>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"
#include "mapper/Frames.h"

namespace Quillon::Cli {

using Mapper::ColorManagementFor;

/// A new float BGRA frame in system memory, contents undefined. Throws CommandError.
PX::VideoFrameRef MakeFloatFrame(int width, int height,
                                 const orvmediatypes::color::ColorSpace& colorSpace);

/// The frame as a new float BGRA frame in another colour space. Throws CommandError.
PX::VideoFrameRef ConvertToFloat(const PX::VideoFrameRef& frame,
                                 const orvmediatypes::color::ColorSpace& colorSpace, int white);

/// Copies a frame into another one in system memory, into its format and colour space. Throws
/// CommandError.
void CopyConverted(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to, int white);

/// The pixels of a float BGRA frame, valid while the frame lives.
struct FloatPixels {
  float* first = nullptr;
  int width = 0;
  int height = 0;
  std::ptrdiff_t stride = 0;  // in floats

  float* Row(int y) const { return first + y * stride; }
};
FloatPixels ViewFloatPixels(const PX::VideoFrameRef& frame);

}  // namespace Quillon::Cli
