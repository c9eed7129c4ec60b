#pragma once

#include <array>
#include <cstddef>

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"
#include "tonemap/ToneCurve.h"

namespace Quillon {

/// Support parameters of BT.2446 method A (Report ITU-R BT.2446-1, clause 4).
struct Bt2446AParams {
  enum Entry : std::size_t { kRhoHdr, kRhoSdr, kInputScale, kOutputScale };
  static constexpr std::array<ParamEntry, 4> kEntries = {
      {{"rhoHdr", "rho of the HDR peak"},
       {"rhoSdr", "rho of the SDR peak"},
       {"inputScale", "input scale"},
       {"outputScale", "SDR peak over reference white", Unit::Linear}}};
};

/// The settings' peak is the HDR peak in nits.
void GetITU2446ASupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                              SupportVector& params);

/// The curve bound to its parameters.
struct Bt2446AToneMap {
  // Deliberate: BT.2446 A declares five parameters and has four.
  static constexpr ToneCurveFacts kFacts = {
      .type = orvmediatypes::color::ToneMapAlgorithmType::ITU2446A,
      .id = "bt2446a",
      .name = "BT.2446 method A",
      .entries = Bt2446AParams::kEntries,
      .declaredParams = 5,
      .knee = {},
      .peakUnit = Unit::Nits,
      .rowForm = RowForm::Tiles,
      .kernel = {
          "ToneMapKernelITU2446A",
          {KernelControl::PeakGain, KernelControl::ColorPreservation, Bt2446AParams::kRhoHdr,
           Bt2446AParams::kRhoSdr, Bt2446AParams::kInputScale, Bt2446AParams::kOutputScale}}};
  static constexpr ToneMapParamsBuilder kBuildParams = GetITU2446ASupportParams;

  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
