#pragma once

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// Support parameters of BT.2446 method A (Report ITU-R BT.2446-1, clause 4):
///   0  rho of the HDR peak
///   1  rho of the SDR peak
///   2  input scale
///   3  SDR peak over reference white
/// The settings' peak is the HDR peak in nits.
void GetITU2446ASupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                              SupportVector& params);

/// The curve bound to its parameters.
struct ITU2446AToneMap {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
