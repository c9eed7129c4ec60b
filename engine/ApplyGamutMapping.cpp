#include "base/DefaultFloatingPoint.h"
#include "base/ResultCodes.h"
#include "engine/ApplyGamutMappingSW.h"
#include "engine/Quillon.h"
#include "gpu/ApplyGamutMappingGPU.h"
#include "host/kestrel/FrameInterfaces.h"

namespace Quillon {

namespace {

bool IsOnGPU(const PX::VideoFrameRef& frame) {
  return orvcore::classref::InterfaceCast<KS::IGPUVideoFrame>(frame).IsUsable();
}

}  // namespace

int ApplyGamutMapping(const PX::VideoFrameRef& source,
                      const PX::GamutMappingUtils::GamutMappingSettings& settings,
                      PX::VideoFrameRef& destination) {
  if (!source.IsUsable() || !destination.IsUsable()) return kInvalidFrame;
  const DefaultFloatingPoint mode;

  // Deliberate: each test asks anew, a source in system memory twice.
  if (IsOnGPU(source) && IsOnGPU(destination)) {
    return ApplyGamutMappingGPU(source, settings, destination);
  }
  if (IsOnGPU(source) || IsOnGPU(destination)) return kNotSupported;

  const orvcore::geom::Bounds destinationBounds = destination->GetBounds();
  if (source->GetBounds() != destinationBounds) return kNotSupported;
  return ApplyGamutMappingSW(source, settings, destination);
}

}  // namespace Quillon
