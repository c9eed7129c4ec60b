#pragma once

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// Support parameters of the hue-preserving desaturation, which also serve the automatic choice:
///   0  scaled source peak: peak gain times peak, linear light
///   1  knee in linear light
///   2  destination peak in linear light
/// For the automatic choice the host may replace algorithm and knee in the settings.
void GetHuePreservationSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                     SupportVector& params);

/// The curve bound to its parameters.
struct HuePreservationToneMap {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
