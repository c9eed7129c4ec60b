#include "tools/quillon/picture/LightLevels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "host/chromant/Conversion.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"

namespace {

float CountedLight(float value) { return std::isfinite(value) ? std::max(value, 0.0F) : 0.0F; }

}  // namespace

std::int64_t ForEachLight(const PX::VideoFrameRef& frame, int white,
                          const std::function<void(std::span<const float>)>& useRow) {
  const PX::VideoFrameRef linear = ConvertToFloat(
      frame, CHR::ORVColorSpaceToEquivalentLinearColorSpace(frame->GetColorSpace()), white);
  const FloatPixels pixels = ViewFloatPixels(linear);
  std::vector<float> row(static_cast<std::size_t>(pixels.width));
  for (int y = 0; y < pixels.height; ++y) {
    const float* pixel = pixels.Row(y);
    for (float& light : row) {
      light = std::max({CountedLight(pixel[0]), CountedLight(pixel[1]), CountedLight(pixel[2])});
      pixel += 4;
    }
    useRow(row);
  }
  return std::int64_t{pixels.width} * pixels.height;
}

LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white) {
  double peak = 0.0;
  double sum = 0.0;
  const auto count = ForEachLight(frame, white, [&](std::span<const float> row) {
    for (const double light : row) {
      peak = std::max(peak, light);
      sum += light;
    }
  });
  return {peak * white, sum / static_cast<double>(count) * white};
}

ContentLight LightOfResult(const PX::VideoFrameRef& result, int white) {
  if (result->GetColorSpace().Description().transfer != H273::kTransferPQ) return {};
  const LightLevels levels = MeasureLightLevels(result, white);
  return {static_cast<float>(levels.peakNits), static_cast<float>(levels.averageNits)};
}
