#pragma once

#include "base/SupportVector.h"
#include "host/PX/ToneMappingUtils.h"

namespace Quillon {

/// Support parameters of both BT.2390 curves (Report ITU-R BT.2390-11, 5.4), PQ code values where
/// nothing else is said:
///   0   source black                      7   normalised destination peak, maxLum
///   1   source peak                       8   knee start KS
///   2   destination black                 9   knee start in nits over reference white
///   3   destination peak                  10  red luminance weight of the destination
///   4   reference white, nits (or 1.0)    11  green luminance weight
///   5   source range, [1] - [0]           12  blue luminance weight
///   6   normalised destination black, minLum
/// A conversion that fails ends the vector early, with 0 or 2 entries.
void GetITU2390SupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                             SupportVector& params);

/// Whether the curves can run on these parameters: the source has a range and the knee starts below
/// its peak. Readies the PQ tables on this thread when they can.
bool PrepareITU2390(const SupportVector& params);

/// The EETF on the largest of red, green and blue, bound to its parameters.
struct ITU2390MaxRGBToneMap {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

/// The EETF on each channel, bound to its parameters.
struct ITU2390RGBByChannelToneMap {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
