#include "tools/quillon/picture/LightLevels.h"

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white, double percent) {
  return ValueOf(Mapper::MeasureLight(frame, white, percent));
}

ContentLight LightOfResult(const PX::VideoFrameRef& result, int white) {
  if (result->GetColorSpace().Description().transfer != H273::kTransferPQ) return {};
  const LightLevels levels = MeasureLightLevels(result, white);
  return {static_cast<float>(levels.peakNits), static_cast<float>(levels.averageNits)};
}

}  // namespace Quillon::Cli
