#pragma once

#include "tests/host/HostTest.h"

namespace cpu {

/// Scripts the host so that the hue-preserving curve comes down to its gain: the destination's
/// peak lies above the source's. With the record's gain of 2 each visit doubles a pixel's colours.
inline void LeaveOnlyTheGain(scripted::Host& host) {
  host.results.toneMappingApplicable = true;
  host.results.convertSignalToLinear = [](const auto&, float) { return 100.0F; };
}

}  // namespace cpu
