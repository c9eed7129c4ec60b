#include "tools/quillon/ApplyPlan.h"

#include <cstdint>
#include <cstdio>

#include "engine/Quillon.h"
#include "tools/quillon/EngineMessages.h"
#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/Frames.h"

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

}  // namespace

PX::VideoFrameRef ApplyPlan(const MapPlan& plan, const std::string& name) {
  const FloatPixels pixels = ViewFloatPixels(plan.source);
  const auto& colorSpace = plan.settings.toneMapSettings.destinationColorSpace;
  PX::VideoFrameRef result = MakeFloatFrame(pixels.width, pixels.height, colorSpace);
  if (plan.device == nullptr) {
    ApplyOrThrow(plan.source, plan, name, result);
    return result;
  }
  const PX::VideoFrameRef source =
      MakeFloatFrameOn(plan.device, pixels.width, pixels.height, plan.source->GetColorSpace());
  PX::VideoFrameRef destination =
      MakeFloatFrameOn(plan.device, pixels.width, pixels.height, colorSpace);
  MovePixels(plan.source, source);
  ApplyOrThrow(source, plan, name, destination);
  MovePixels(destination, result);
  return result;
}
