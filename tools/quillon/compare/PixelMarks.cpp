#include "tools/quillon/compare/PixelMarks.h"

#include <algorithm>
#include <cmath>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

namespace {

// A signal that went through YCbCr meets full scale but for rounding; the step below full scale of
// a 16-bit signal is 1.5e-5 away.
constexpr float kFullScale = 1.0F - 1e-6F;
constexpr double kToleratedNits = 0.01;

bool IsFinite(const float* bgra) {
  return std::isfinite(bgra[0]) && std::isfinite(bgra[1]) && std::isfinite(bgra[2]);
}

/// What one pixel is looked at for.
class Marker {
 public:
  Marker(bool hasFullScale, int white)
      : fullScale_(hasFullScale ? kFullScale : INFINITY),
        leastLight_(static_cast<float>(-kToleratedNits / white)) {}

  std::uint8_t Mark(const float* signal, const float* light, const float* gamutLight) const {
    if (!IsFinite(signal) || !IsFinite(light) || !IsFinite(gamutLight)) return kNotFinite;
    unsigned marks = 0;
    if (std::max({signal[0], signal[1], signal[2]}) >= fullScale_) marks |= kClipped;
    if (std::min({gamutLight[0], gamutLight[1], gamutLight[2]}) < leastLight_) marks |= kOutOfGamut;
    return static_cast<std::uint8_t>(marks);
  }

 private:
  float fullScale_;
  float leastLight_;
};

}  // namespace

std::int64_t PixelMarks::Count(PixelMark mark) const {
  return std::count_if(marks.begin(), marks.end(),
                       [mark](unsigned pixel) { return (pixel & mark) != 0; });
}

PixelMarks MarkPixels(const PictureLight& picture, std::uint8_t gamutPrimaries, int white) {
  const PX::VideoFrameRef gamutFrame =
      gamutPrimaries == RefHost::kPrimariesBT2020
          ? picture.light
          : ConvertToFloat(picture.signal, LinearLightIn(gamutPrimaries), white);
  const FloatPixels signal = ViewFloatPixels(picture.signal);
  const FloatPixels light = ViewFloatPixels(picture.light);
  const FloatPixels gamutLight = ViewFloatPixels(gamutFrame);

  PixelMarks result;
  result.hasFullScale = !picture.signal->GetColorSpace().IsLinear();
  result.marks.reserve(static_cast<std::size_t>(signal.width) * signal.height);
  const Marker marker(result.hasFullScale, white);
  for (int y = 0; y < signal.height; ++y) {
    for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{4} * signal.width; i += 4) {
      result.marks.push_back(
          marker.Mark(signal.Row(y) + i, light.Row(y) + i, gamutLight.Row(y) + i));
    }
  }
  return result;
}

}  // namespace Quillon::Cli
