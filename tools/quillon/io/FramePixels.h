#pragma once

#include <cstddef>
#include <cstdint>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

/// The pixels of an interleaved frame in system memory, valid while the frame lives.
struct FramePixels {
  std::uint8_t* data = nullptr;
  std::ptrdiff_t rowBytes = 0;
  int width = 0;
  int height = 0;

  template <class Sample>
  Sample* Row(int y) const {
    return reinterpret_cast<Sample*>(data + y * rowBytes);
  }
};

FramePixels PixelsOf(const PX::VideoFrameRef& frame);

/// A new frame for a picture of the file, contents undefined. Throws StillError.
PX::VideoFrameRef MakeFrame(const StillSource& source, orvmediatypes::PixelFormat format, int width,
                            int height, const orvmediatypes::color::ColorSpace& colorSpace);

/// Sets the alpha of a BGRA frame of `Sample` components to `opaque`. True when some pixel had
/// another alpha.
template <class Sample>
bool MakeOpaque(const FramePixels& pixels, Sample opaque) {
  bool changed = false;
  for (int y = 0; y < pixels.height; ++y) {
    Sample* row = pixels.Row<Sample>(y);
    for (std::ptrdiff_t x = 0; x < pixels.width; ++x) {
      Sample& alpha = row[4 * x + 3];
      changed = changed || !(alpha == opaque);
      alpha = opaque;
    }
  }
  return changed;
}

inline constexpr const char* kAlphaDropped = "alpha channel dropped";

/// Narrow-range R'G'B' code value as a signal value: 16 x 2^(depth - 8) is 0, 235 x 2^(depth - 8)
/// is 1 (ITU-T H.273, 8.3).
inline float NarrowRangeSignal(unsigned code, int depth) {
  const float unit = static_cast<float>(1U << (depth - 8));
  return (static_cast<float>(code) - 16.0F * unit) / (219.0F * unit);
}

/// Full-range code value as a signal value.
inline float FullRangeSignal(unsigned code, int depth) {
  return static_cast<float>(code) / static_cast<float>((1U << depth) - 1U);
}

}  // namespace Quillon::Cli
