#pragma once

#include <array>
#include <cstddef>

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"
#include "tonemap/ToneCurve.h"

namespace Quillon {

inline constexpr std::size_t kCarTableSize = 128;

/// Coefficients of the CAR curve by knee, built once per process.
struct CarTables {
  std::array<float, kCarTableSize> a;
  std::array<float, kCarTableSize> b;
};
const CarTables& GetCarTables();

/// Support parameters of the CAR curve.
struct CarParams {
  enum Entry : std::size_t {
    kKnee,
    kA,
    kB,
    kDestinationPeak,
    kWeightRed,
    kWeightGreen,
    kWeightBlue
  };
  static constexpr std::array<ParamEntry, 7> kEntries = {
      {{"knee", "knee point", Unit::Linear},
       {"a", "coefficient A"},
       {"b", "coefficient B"},
       {"destinationPeak", "destination peak", Unit::Linear},
       {"weightRed", "red luminance weight"},
       {"weightGreen", "green luminance weight"},
       {"weightBlue", "blue luminance weight"}}};
};

/// The knee is 0 to 1 of the destination's peak.
void GetCARToneCurveSupportParams(
    const orvmediatypes::color::ColorSpace& destination,
    const orvmediatypes::color::ColorManagementSettings& colorManagement, float knee,
    SupportVector& params);

/// The same from a settings record.
void GetCARToneCurveSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                  SupportVector& params);

/// The curve bound to its parameters.
struct CARToneMap {
  // Deliberate: the kernel takes its controls among the parameters.
  static constexpr ToneCurveFacts kFacts = {
      .type = orvmediatypes::color::ToneMapAlgorithmType::CARToneCurve,
      .id = "car",
      .name = "CAR tone curve",
      .entries = CarParams::kEntries,
      .declaredParams = 7,
      .knee = Knee{.entry = CarParams::kKnee, .isSetting = true},
      .peakUnit = Unit::Linear,
      .rowForm = RowForm::Tiles,
      .kernel = {
          "ToneMapKernelCARToneCurve",
          {CarParams::kKnee, KernelControl::PeakGain, CarParams::kA, CarParams::kB,
           KernelControl::ColorPreservation, KernelControl::Peak, CarParams::kDestinationPeak,
           CarParams::kWeightRed, CarParams::kWeightGreen, CarParams::kWeightBlue}}};
  static constexpr ToneMapParamsBuilder kBuildParams = GetCARToneCurveSupportParams;

  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
