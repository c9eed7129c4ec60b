#include "cpu/GamutCompression.h"

#include "base/DefaultFloatingPoint.h"
#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "tonemap/PeakLuminance.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using orvmediatypes::color::GamutCompressionAlgorithmType;
using PX::GamutMappingUtils::GamutCompressionSettings;

void GamutCompressionReinhard::operator()(float* pixel, const SupportVector& params,
                                          const GamutCompressionSettings& /*settings*/) const {
  MapPixel(*this, pixel, params.data());
}

void GamutCompressionDesaturation::operator()(float* pixel, const SupportVector& params,
                                              const GamutCompressionSettings& /*settings*/) const {
  MapPixel(*this, pixel, params.data());
}

int GetGamutCompressionSupportParams(const PX::GamutMappingUtils::GamutMappingSettings& settings,
                                     SupportVector& params) {
  // Deliberate: the record's own colour-management settings, whatever its version.
  const PX::ToneMappingUtils::ToneMapSettings& record = settings.toneMapSettings;
  const DefaultFloatingPoint mode;
  params.clear();
  switch (settings.GamutCompressionSettings::algorithmType) {
    case GamutCompressionAlgorithmType::Reinhard:
      params.push_back(ConvertPeakSignalToLinear(record.sourceColorSpace,
                                                 record.destinationColorSpace,
                                                 record.colorManagementSettings, 1.0F));
      return kSuccess;
    case GamutCompressionAlgorithmType::Desaturation:
      for (const float weight : GetDestinationLuminanceWeights(record.destinationColorSpace,
                                                               record.colorManagementSettings)) {
        params.push_back(weight);
      }
      return kSuccess;
    default:
      return kNotSupported;
  }
}

int GetGamutCompressionSupportParamsSize(GamutCompressionAlgorithmType algorithmType) {
  if (const GamutCurveFacts* curve = FindGamutCurve(algorithmType)) {
    return static_cast<int>(curve->entries.size());
  }
  // Deliberate: the message names the size query of the tone map.
  TraceFailure([&](auto& message) {
    message << "GetToneMappingSupportParamsSize : Invalid Tone Map Method Algorithm Type : "
            << PX::GamutMappingUtils::GetGamutCompressionMethodName(algorithmType, 1);
  });
  return kUnknownAlgorithmSize;
}

}  // namespace Quillon
