#pragma once

#include <memory>

#include "base/SupportVector.h"
#include "curves/Bt2390.h"
#include "host/pavix/ToneMappingUtils.h"

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

/// What the EETF is applied to: the largest of red, green and blue, or each.
enum class Itu2390Form { MaxRGB, ByChannel };

/// Everything that the two PQ tables can lead a curve to: for each whole number of nits, 0 to 9999,
/// what becomes of it, and for each entry of the decoding table its light. Light is 1.0 at
/// reference white. Built for one vector of parameters, read by many threads. All of its memory is
/// the host's recycler's.
struct Itu2390Tables {
  SupportVector params;   ///< what the tables were built for
  SupportVector mapped;   ///< by channel, by nits: the result
  SupportVector encoded;  ///< MaxRGB, by nits: PQ code value, lifted from source black
  SupportVector ratio;    ///< MaxRGB, by nits: what a pixel with this largest channel is scaled by
  SupportVector decoded;  ///< by code value in steps of 1/8191: the light
  bool hostEncodesAsSt2084 = false;  ///< light beyond the tables need not go through the host
};

/// Null when the curve does not run (a knee at or above the source's peak), or when these
/// parameters lead it to code values outside [0, 1], which the decoding table does not have: then
/// the curve has no row form. Once a call, before there are threads.
std::shared_ptr<const Itu2390Tables> MakeItu2390Tables(Itu2390Form form,
                                                       const SupportVector& params);

/// What the EETF reads of the 13 support parameters.
Bt2390Params Itu2390CurveParams(const float* params);

/// The EETF on a pixel whose highlights have been desaturated, in place. `params` are the 13
/// support parameters.
void ApplyItu2390(Itu2390Form form, const float* params, float* pixel);

/// The EETF on the largest of red, green and blue, bound to its parameters. Its tables, where it
/// has any, speed up rows and change no result.
struct ITU2390MaxRGBToneMap {
  static constexpr Itu2390Form kForm = Itu2390Form::MaxRGB;
  std::shared_ptr<const Itu2390Tables> tables;
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

/// The EETF on each channel, likewise.
struct ITU2390RGBByChannelToneMap {
  static constexpr Itu2390Form kForm = Itu2390Form::ByChannel;
  std::shared_ptr<const Itu2390Tables> tables;
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
