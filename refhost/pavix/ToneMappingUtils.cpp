#include "host/pavix/ToneMappingUtils.h"

#include <cstdint>

#include "curves/math64.h"
#include "host/chromant/Conversion.h"
#include "tonemap/Algorithms.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace PX::ToneMappingUtils {

float ConvertPeakLinearSignalToLuminance(const ToneMapSettings& settings) {
  // Records from before version 3 carry no colour-management settings of their own.
  const ColorManagementSettings colorManagement = settings.controls.GetVersion() < 3
                                                      ? ColorManagementSettings()
                                                      : settings.colorManagementSettings;
  const auto white = static_cast<std::uint32_t>(colorManagement.GetGraphicsWhiteLuminance());
  // The peak of an empty source is linear already: the conversion leaves it as it is.
  return CHR::ConvertSignalToLinearValue(settings.sourceColorSpace, colorManagement,
                                         settings.controls.peak) *
         static_cast<float>(white);
}

int AdjustToneMapSettingsVersionForNCMVersionHandle(int version) { return version; }

void GetAdjustedToneMapAlgoAndKnee(float peak, ToneMapAlgorithmType& algorithmType, float& knee) {
  algorithmType = ToneMapAlgorithmType::HuePreservationDesaturation;
  if (!(peak > 0.0F)) return;
  // 1 / (1 + a peak^b): half the destination's peak at twice that peak, a quarter at a hundred
  // times.
  const double b = Logarithm64(3.0) / Logarithm64(50.0);
  const double a = Power64(2.0, -b);
  knee = static_cast<float>(1.0 / (1.0 + a * Power64(static_cast<double>(peak), b)));
}

std::string GetLocalizedToneMappingMethodName(ToneMapAlgorithmType algorithmType, int /*form*/) {
  if (algorithmType == ToneMapAlgorithmType::None) return "None";
  if (algorithmType == ToneMapAlgorithmType::Automatic) return "Automatic";
  if (const auto* curve = Quillon::FindToneCurve(algorithmType)) return std::string(curve->name);
  return "Unknown tone-mapping method " + std::to_string(static_cast<int>(algorithmType));
}

}  // namespace PX::ToneMappingUtils
