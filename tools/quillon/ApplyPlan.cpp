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

}  // namespace

PX::VideoFrameRef ApplyPlan(const MapPlan& plan, const std::string& name) {
  const FloatPixels pixels = ViewFloatPixels(plan.source);
  PX::VideoFrameRef destination = MakeFloatFrame(
      pixels.width, pixels.height, plan.settings.toneMapSettings.destinationColorSpace);

  const EngineMessages messages;
  const int result = Quillon::ApplyGamutMapping(plan.source, plan.settings, destination);
  if (result < 0) {
    const std::string said = messages.Joined();
    throw CommandError(
        ExitCode::EngineRefused,
        name + ": the engine refused with " + HexCode(result) + (said.empty() ? "" : ": " + said));
  }
  return destination;
}
