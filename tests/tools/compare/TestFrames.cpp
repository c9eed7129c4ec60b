#include "tests/tools/compare/TestFrames.h"

#include <algorithm>

#include "tools/quillon/picture/Frames.h"

using namespace Quillon::Cli;

PX::VideoFrameRef MakeTestFrame(int width, int height, std::uint8_t primaries,
                                std::uint8_t transfer,
                                const std::function<Rgb(int x, int y)>& pixel) {
  orvmediatypes::color::ColorDescription description;
  description.primaries = primaries;
  description.transfer = transfer;
  PX::VideoFrameRef frame =
      MakeFloatFrame(width, height, orvmediatypes::color::ColorSpace(description));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) SetTestPixel(frame, x, y, pixel(x, y));
  }
  return frame;
}

void SetTestPixel(const PX::VideoFrameRef& frame, int x, int y, const Rgb& rgb) {
  const std::array<float, 4> bgra = {rgb[2], rgb[1], rgb[0], 1.0F};
  std::copy(bgra.begin(), bgra.end(), ViewFloatPixels(frame).Row(y) + std::ptrdiff_t{4} * x);
}
