#include "tools/quillon/picture/SceneLight.h"

#include <algorithm>
#include <cmath>

#include "host/chromant/Conversion.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/PictureLight.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr double kMostStops = 8.0;
constexpr double kDarkestNits = 1e-4;

/// ITU-R BT.2020, table 4; 0 for what is no light.
double Luminance(const float* bgra) {
  const double luminance = 0.0593 * bgra[0] + 0.6780 * bgra[1] + 0.2627 * bgra[2];
  return std::isfinite(luminance) ? std::max(luminance, 0.0) : 0.0;
}

}  // namespace

bool IsSceneLinear(const ColorDescription& colors) {
  return colors.transfer == RefHost::kTransferLinear;
}

PX::VideoFrameRef ScaleLight(const PX::VideoFrameRef& frame, double factor, int white) {
  if (factor == 1.0) return frame;
  const bool isFloat = frame->GetPixelFormat() == orvmediatypes::kLinearFloatBGRA;
  PX::VideoFrameRef scaled =
      isFloat ? frame
              : ConvertToFloat(
                    frame, CHR::ORVColorSpaceToEquivalentLinearColorSpace(frame->GetColorSpace()),
                    white);
  const FloatPixels pixels = ViewFloatPixels(scaled);
  const auto scale = static_cast<float>(factor);
  for (int y = 0; y < pixels.height; ++y) {
    float* pixel = pixels.Row(y);
    for (int x = 0; x < pixels.width; ++x, pixel += 4) {
      for (int component = 0; component < 3; ++component) pixel[component] *= scale;
    }
  }
  return scaled;
}

void TagPicture(const PX::VideoFrameRef& frame, const ColorDescription& colors, float fileWhiteNits,
                int white) {
  frame->SetColorSpace(ColorSpace(colors));
  if (fileWhiteNits > 0.0F && IsSceneLinear(colors)) {
    ScaleLight(frame, static_cast<double>(fileWhiteNits) / white, white);
  }
}

double LogAverageNits(const PX::VideoFrameRef& frame, int white) {
  const PX::VideoFrameRef light =
      ConvertToFloat(frame, LinearLightIn(RefHost::kPrimariesBT2020), white);
  const FloatPixels pixels = ViewFloatPixels(light);
  double sum = 0.0;
  std::int64_t count = 0;
  for (int y = 0; y < pixels.height; ++y) {
    const float* pixel = pixels.Row(y);
    for (int x = 0; x < pixels.width; ++x, pixel += 4) {
      const double nits = Luminance(pixel) * white;
      if (nits <= 0.0) continue;
      sum += std::log2(std::max(nits, kDarkestNits));
      ++count;
    }
  }
  return count == 0 ? 0.0 : std::exp2(sum / static_cast<double>(count));
}

double AutomaticStops(double logAverageNits, int white) {
  if (!(logAverageNits > 0.0)) return 0.0;
  return std::clamp(std::log2(kGreyOfWhite * white / logAverageNits), -kMostStops, kMostStops);
}

}  // namespace Quillon::Cli
