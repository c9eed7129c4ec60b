#include "tonemap/Algorithms.h"

#include <algorithm>
#include <array>

#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"
#include "tonemap/Itu2390.h"
#include "tonemap/Itu2446A.h"

namespace Quillon {

using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

template <class Curve>
ToneMapPixelFunction BindITU2390(const SupportVector& params) {
  if (!PrepareITU2390(params)) return {};
  return Curve{MakeItu2390Tables(Curve::kForm, params)};
}

}  // namespace

const ToneMapAlgorithm* FindToneMapAlgorithm(ToneMapAlgorithmType algorithmType) {
  using enum ToneMapAlgorithmType;
  // Deliberate: BT.2446 A declares five parameters and has four.
  static const std::array<ToneMapAlgorithm, 5> kAlgorithms = {{
      {ITU2390MaxRGB, 13, 13, GetITU2390SupportParams, ITU2390MaxRGBToneMap{},
       BindITU2390<ITU2390MaxRGBToneMap>, KernelId::ITU2390MaxRGB},
      {ITU2390RGBByChannel, 13, 13, GetITU2390SupportParams, ITU2390RGBByChannelToneMap{},
       BindITU2390<ITU2390RGBByChannelToneMap>, KernelId::ITU2390RGBByChannel},
      {ITU2446A, 5, 4, GetITU2446ASupportParams, ITU2446AToneMap{}, nullptr, KernelId::ITU2446A},
      {HuePreservationDesaturation, 3, 3, GetHuePreservationSupportParams, HuePreservationToneMap{},
       nullptr, KernelId::HuePreservationDesaturation},
      {CARToneCurve, 7, 7, GetCARToneCurveSupportParams, CARToneMap{}, nullptr,
       KernelId::CARToneCurve},
  }};
  const auto* found = std::find_if(kAlgorithms.begin(), kAlgorithms.end(),
                                   [&](const auto& entry) { return entry.type == algorithmType; });
  return found == kAlgorithms.end() ? nullptr : found;
}

}  // namespace Quillon
