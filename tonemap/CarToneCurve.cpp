#include "tonemap/CarToneCurve.h"

#include <algorithm>
#include <cmath>

#include "base/DefaultFloatingPoint.h"
#include "curves/Car.h"
#include "curves/HighlightDesaturation.h"
#include "host/chromant/Conversion.h"
#include "tonemap/PeakLuminance.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

constexpr float kTiny = 1e-15F;
constexpr float kKneeOffset = 0.005F;
constexpr float kKneeScale = 0.995F;

CarTables BuildCarTables() {
  const DefaultFloatingPoint mode;
  constexpr float kStep = 0.0077734375F;  // 0.995 / 128
  const float p = Power(100.0F, 1.25F);
  CarTables tables{};
  float next = kKneeOffset;
  for (std::size_t n = 0; n < kCarTableSize; ++n) {
    const float x = std::min(1.0F, next);
    const float power = Power(x, 1.25F);
    tables.a[n] = (power * (p * x) - power * p) / ((power - p) * x + kTiny);
    tables.b[n] = (p * x - power) / ((p - power) * x + kTiny);
    next += kStep;
  }
  return tables;
}

/// Clamped before the conversion to an index; not a number gives 0.
std::size_t TableIndex(float scaledKnee) {
  const float place = std::floor((scaledKnee - kKneeOffset) * static_cast<float>(kCarTableSize));
  if (!(place > 0.0F)) return 0;
  constexpr auto kLast = static_cast<float>(kCarTableSize - 1);
  return static_cast<std::size_t>(std::min(place, kLast));
}

}  // namespace

const CarTables& GetCarTables() {
  static const CarTables kTables = BuildCarTables();
  return kTables;
}

void GetCARToneCurveSupportParams(const ColorSpace& destination,
                                  const ColorManagementSettings& colorManagement, float knee,
                                  SupportVector& params) {
  params.clear();
  params.reserve(GetToneMappingSupportParamsSize(ToneMapAlgorithmType::CARToneCurve));
  const float scaledKnee = knee * kKneeScale + kKneeOffset;
  const float peak = CHR::ConvertSignalToLinearValue(destination, colorManagement,
                                                     GetPeakSignalFromMetaData(destination, 1.0F));
  const std::size_t index = TableIndex(scaledKnee);
  params.push_back(scaledKnee > 0.0F ? peak * scaledKnee : kTiny);
  params.push_back(GetCarTables().a[index]);
  params.push_back(GetCarTables().b[index]);
  params.push_back(peak);
  for (const float weight : GetDestinationLuminanceWeights(destination, colorManagement)) {
    params.push_back(weight);
  }
}

void CARToneMap::operator()(float* pixel, const SupportVector& params,
                            const PX::ToneMappingUtils::ToneMapSettings& settings) const {
  using P = CarParams;
  DesaturateHighlight(pixel, settings.controls.peakGain, params[P::kKnee], settings.controls.peak,
                      settings.controls.colorPreservation, params[P::kWeightRed],
                      params[P::kWeightGreen], params[P::kWeightBlue]);
  ToneMapCar(pixel, params[P::kKnee], params[P::kA], params[P::kB], params[P::kDestinationPeak]);
}

void GetCARToneCurveSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                  SupportVector& params) {
  // Deliberate: the record's own colour management, whatever its version.
  GetCARToneCurveSupportParams(settings.destinationColorSpace, settings.colorManagementSettings,
                               settings.knee, params);
}

}  // namespace Quillon
