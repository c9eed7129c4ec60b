#include "tools/quillon/LightLevels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/CHR/Conversion.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/Frames.h"

namespace {

float CountedLight(float value) { return std::isfinite(value) ? std::max(value, 0.0F) : 0.0F; }

}  // namespace

LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white) {
  const PX::VideoFrameRef linear = ConvertToFloat(
      frame, CHR::ORVColorSpaceToEquivalentLinearColorSpace(frame->GetColorSpace()), white);
  const FloatPixels pixels = ViewFloatPixels(linear);

  double peak = 0.0;
  double sum = 0.0;
  for (int y = 0; y < pixels.height; ++y) {
    const float* pixel = pixels.Row(y);
    for (int x = 0; x < pixels.width; ++x, pixel += 4) {
      const double light =
          std::max({CountedLight(pixel[0]), CountedLight(pixel[1]), CountedLight(pixel[2])});
      peak = std::max(peak, light);
      sum += light;
    }
  }
  const double count = static_cast<double>(pixels.width) * pixels.height;
  return {peak * white, sum / count * white};
}

ContentLight LightOfResult(const PX::VideoFrameRef& result, int white) {
  if (result->GetColorSpace().Description().transfer != H273::kTransferPQ) return {};
  const LightLevels levels = MeasureLightLevels(result, white);
  return {static_cast<float>(levels.peakNits), static_cast<float>(levels.averageNits)};
}
