#include "tools/quillon/ApplyPlan.h"

#include <cstdint>
#include <cstdio>

#include "engine/Quillon.h"
#include "tools/quillon/EngineMessages.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

std::string HexCode(int code) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<std::uint32_t>(code));
  return text;
}

void ApplyOrThrow(const PX::VideoFrameRef& source, const MapPlan& plan, const std::string& name,
                  PX::VideoFrameRef& destination) {
  const EngineMessages messages;
  const int result = Quillon::ApplyGamutMapping(source, plan.settings, destination);
  if (result >= 0) return;
  const std::string said = messages.Joined();
  throw CommandError(
      ExitCode::EngineRefused,
      name + ": the engine refused with " + HexCode(result) + (said.empty() ? "" : ": " + said));
}

/// Through frames on the plan's device.
void ApplyOnDevice(const PX::VideoFrameRef& source, const MapPlan& plan, const std::string& name,
                   PX::VideoFrameRef& result) {
  const orvcore::geom::Bounds bounds = source->GetBounds();
  const PX::VideoFrameRef from =
      MakeFloatFrameOn(plan.device, bounds.width, bounds.height, source->GetColorSpace());
  PX::VideoFrameRef to =
      MakeFloatFrameOn(plan.device, bounds.width, bounds.height, result->GetColorSpace());
  MovePixels(source, from);
  ApplyOrThrow(from, plan, name, to);
  MovePixels(to, result);
}

/// A float BGRA frame, mapped into a new one in the destination's colour space.
PX::VideoFrameRef ApplyToFloat(const MapPlan& plan, const std::string& name,
                               const PX::VideoFrameRef& source) {
  const orvcore::geom::Bounds bounds = source->GetBounds();
  PX::VideoFrameRef result = MakeFloatFrame(bounds.width, bounds.height,
                                            plan.settings.toneMapSettings.destinationColorSpace);
  if (plan.device != nullptr) {
    ApplyOnDevice(source, plan, name, result);
  } else {
    ApplyOrThrow(source, plan, name, result);
  }
  return result;
}

/// Whether two colour spaces differ in how they are coded alone.
bool AreSameColors(const ColorDescription& one, const ColorDescription& other) {
  return one.primaries == other.primaries && one.transfer == other.transfer &&
         one.chromaticities == other.chromaticities;
}

}  // namespace

PX::VideoFrameRef ApplyPlan(const MapPlan& plan, const std::string& name) {
  return ApplyToFloat(plan, name, plan.source);
}

void ApplyPlanTo(const MapPlan& plan, const std::string& name, const PX::VideoFrameRef& source,
                 PX::VideoFrameRef& destination) {
  const ColorSpace& engineSpace = plan.settings.toneMapSettings.sourceColorSpace;
  if (plan.device == nullptr && AreSameColors(plan.taggedSource, engineSpace.Description())) {
    ColorDescription coded = engineSpace.Description();
    coded.matrix = plan.taggedSource.matrix;
    coded.fullRange = plan.taggedSource.fullRange;
    coded.chromaLocation = plan.taggedSource.chromaLocation;
    source->SetColorSpace(ColorSpace(coded));
    ApplyOrThrow(source, plan, name, destination);
    return;
  }
  source->SetColorSpace(ColorSpace(plan.taggedSource));
  const PX::VideoFrameRef floats = ConvertToFloat(source, engineSpace, plan.white);
  CopyConverted(ApplyToFloat(plan, name, floats), destination, plan.white);
}
