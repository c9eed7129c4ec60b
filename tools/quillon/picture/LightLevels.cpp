#include "tools/quillon/picture/LightLevels.h"

#include <algorithm>
#include <cstdint>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white, double percent) {
  return ValueOf(Mapper::MeasureLight(frame, white, percent));
}

double DimShare(const PX::VideoFrameRef& frame, int white) {
  constexpr float kBlackNits = 1e-4F;
  std::int64_t dim = 0;
  const auto failure = Mapper::ForEachLight(frame, white, [&dim](std::span<const float> row) {
    dim += std::count_if(row.begin(), row.end(),
                         [](float nits) { return nits > kBlackNits && nits < 1.0F; });
  });
  if (failure) FailMapping(*failure);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  return static_cast<double>(dim) / (static_cast<double>(bounds.width) * bounds.height);
}

ContentLight LightOfResult(const PX::VideoFrameRef& result, int white) {
  if (result->GetColorSpace().Description().transfer != RefHost::kTransferPQ) return {};
  const LightLevels levels = MeasureLightLevels(result, white);
  return {static_cast<float>(levels.peakNits), static_cast<float>(levels.averageNits)};
}

}  // namespace Quillon::Cli
