#include "tonemap/SupportParams.h"

#include <memory>

#include "base/DefaultFloatingPoint.h"
#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "host/chromant/Conversion.h"
#include "host/ironlane/ColorConvertParams.h"
#include "tonemap/Algorithms.h"
#include "tonemap/PeakLuminance.h"

namespace Quillon {

using orvmediatypes::color::ToneMapAlgorithmType;

void GetToneMappingSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                 SupportVector& params) {
  const DefaultFloatingPoint mode;
  settings.controls.version = PX::ToneMappingUtils::AdjustToneMapSettingsVersionForNCMVersionHandle(
      settings.controls.version);
  settings.controls.peak = AdjustedPeakBasedOnInputColorSpace(settings);

  const ToneMapAlgorithm* algorithm =
      FindToneMapAlgorithm(AlgorithmOfParams(settings.algorithmType));
  if (algorithm == nullptr) {
    TraceFailure([&](auto& message) {
      message << "GetToneMappingSupportParams : Not implemented for input algorithms : "
              << static_cast<int>(settings.algorithmType);
    });
    return;
  }
  algorithm->buildParams(settings, params);
}

int GetToneMappingSupportParamsSize(ToneMapAlgorithmType algorithmType) {
  if (const ToneCurveFacts* curve = FindToneCurve(algorithmType)) return curve->declaredParams;
  // Deliberate: the automatic choice has no size either.
  TraceFailure([&](auto& message) {
    message << "GetToneMappingSupportParamsSize : Invalid Tone Map Method Algorithm Type : "
            << PX::ToneMappingUtils::GetLocalizedToneMappingMethodName(algorithmType, 1);
  });
  return kUnknownAlgorithmSize;
}

std::array<float, 3> GetDestinationLuminanceWeights(
    const orvmediatypes::color::ColorSpace& destination,
    const orvmediatypes::color::ColorManagementSettings& colorManagement) {
  std::shared_ptr<IL::ColorConvertParams> params;
  orvcore::utility::Guid identity;
  // Deliberate: neither the code nor the identity is looked at.
  CHR::GetColorConverterParamsForColorSpace(destination, true, colorManagement, params, identity);
  return params != nullptr ? params->luminanceCoefficients : std::array<float, 3>{};
}

}  // namespace Quillon
