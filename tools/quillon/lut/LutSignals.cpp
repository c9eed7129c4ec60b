#include "tools/quillon/lut/LutSignals.h"

#include <algorithm>

#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

namespace {

constexpr std::size_t kRowPixels = 1024;

float* PixelAt(const FloatPixels& pixels, std::size_t index) {
  return pixels.Row(static_cast<int>(index / kRowPixels)) + 4 * (index % kRowPixels);
}

}  // namespace

PX::VideoFrameRef FrameOfSignals(const std::vector<Signal>& signals,
                                 const orvmediatypes::color::ColorSpace& colorSpace) {
  const std::size_t rows = (signals.size() + kRowPixels - 1) / kRowPixels;
  PX::VideoFrameRef frame = MakeFloatFrame(kRowPixels, static_cast<int>(rows), colorSpace);
  const FloatPixels pixels = ViewFloatPixels(frame);
  for (std::size_t i = 0; i < rows * kRowPixels; ++i) {
    const Signal signal = i < signals.size() ? signals[i] : Signal{};
    float* pixel = std::copy(signal.rbegin(), signal.rend(), PixelAt(pixels, i));
    *pixel = 1.0F;
  }
  return frame;
}

std::vector<Signal> SignalsOfFrame(const PX::VideoFrameRef& frame, std::size_t count) {
  const FloatPixels pixels = ViewFloatPixels(frame);
  std::vector<Signal> signals;
  signals.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const float* pixel = PixelAt(pixels, i);
    signals.push_back({pixel[2], pixel[1], pixel[0]});
  }
  return signals;
}

}  // namespace Quillon::Cli
