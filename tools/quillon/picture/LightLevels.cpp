#include "tools/quillon/picture/LightLevels.h"

#include "mapper/Frames.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white) {
  return ValueOf(Mapper::MeasureLight(frame, white));
}

std::int64_t ForEachLight(const PX::VideoFrameRef& frame, int white,
                          const std::function<void(std::span<const float>)>& useRow) {
  return ValueOf(Mapper::ForEachLight(frame, white, useRow));
}

ContentLight LightOfResult(const PX::VideoFrameRef& result, int white) {
  if (result->GetColorSpace().Description().transfer != RefHost::kTransferPQ) return {};
  const LightLevels levels = MeasureLightLevels(result, white);
  return {static_cast<float>(levels.peakNits), static_cast<float>(levels.averageNits)};
}

}  // namespace Quillon::Cli
