#pragma once

#include <array>
#include <cstddef>

#include "base/SupportVector.h"
#include "curves/HuePreservation.h"
#include "host/pavix/ToneMappingUtils.h"
#include "tonemap/ToneCurve.h"

namespace Quillon {

/// Support parameters of the hue-preserving desaturation, which also serve the automatic choice.
struct HuePreservationParams {
  enum Entry : std::size_t {
    kSourcePeak,  ///< peak gain times peak
    kKnee,
    kDestinationPeak,
  };
  static constexpr std::array<ParamEntry, 3> kEntries = {
      {{"sourcePeak", "scaled source peak", Unit::Linear},
       {"knee", "knee", Unit::Linear},
       {"destinationPeak", "destination peak", Unit::Linear}}};
};

/// For the automatic choice the host may replace algorithm and knee in the settings.
void GetHuePreservationSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                     SupportVector& params);

/// The curve bound to its parameters.
struct HuePreservationToneMap {
  // Deliberate: the kernel takes the destination's peak before the knee.
  static constexpr ToneCurveFacts kFacts = {
      .type = orvmediatypes::color::ToneMapAlgorithmType::HuePreservationDesaturation,
      .id = "hue",
      .name = "Hue-preserving desaturation",
      .entries = HuePreservationParams::kEntries,
      .declaredParams = 3,
      .knee = Knee{.entry = HuePreservationParams::kKnee, .isSetting = true},
      .peakUnit = Unit::Linear,
      .rowForm = RowForm::Vectors,
      .kernel = {"ToneMapKernelHuePreservationDesaturationMain",
                 {HuePreservationParams::kSourcePeak, HuePreservationParams::kDestinationPeak,
                  HuePreservationParams::kKnee, KernelControl::PeakGain,
                  KernelControl::ColorPreservation}}};
  static constexpr ToneMapParamsBuilder kBuildParams = GetHuePreservationSupportParams;

  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

/// The curve on one pixel, or on a vector of them.
QUILLON_CURVE void MapPixel(const HuePreservationToneMap& /*curve*/, Real* pixel,
                            const float* params,
                            const orvmediatypes::color::ToneMapControls& controls) {
  HuePreservingDesaturation(pixel, controls.peakGain, params[HuePreservationParams::kSourcePeak],
                            params[HuePreservationParams::kKnee],
                            params[HuePreservationParams::kDestinationPeak],
                            controls.colorPreservation);
}

}  // namespace Quillon
