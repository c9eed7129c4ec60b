#include "tonemap/HuePreservation.h"

#include "base/WorkingColorManagement.h"
#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "tonemap/PeakLuminance.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using orvmediatypes::color::ToneMapAlgorithmType;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

float DestinationPeak(const ToneMapSettings& settings) {
  if (!PX::ColorSpaceUtils::IsNewColorManagementEnabled()) return 1.0F;
  const float signal = GetPeakSignalFromMetaData(settings.destinationColorSpace, 1.0F);
  return CHR::ConvertSignalToLinearValue(settings.destinationColorSpace,
                                         WorkingColorManagementSettings(settings), signal);
}

}  // namespace

void GetHuePreservationSupportParams(ToneMapSettings& settings, SupportVector& params) {
  params.clear();
  params.reserve(
      GetToneMappingSupportParamsSize(ToneMapAlgorithmType::HuePreservationDesaturation));
  params.push_back(settings.controls.peakGain * settings.controls.peak);
  if (settings.algorithmType == ToneMapAlgorithmType::Automatic) {
    // Deliberate: the vector stays that of the hue-preserving curve whatever is chosen.
    PX::ToneMappingUtils::GetAdjustedToneMapAlgoAndKnee(params[HuePreservationParams::kSourcePeak],
                                                        settings.algorithmType, settings.knee);
  }
  const float destinationPeak = DestinationPeak(settings);
  params.push_back(destinationPeak * settings.knee);
  params.push_back(destinationPeak);
}

void HuePreservationToneMap::operator()(float* pixel, const SupportVector& params,
                                        const ToneMapSettings& settings) const {
  MapPixel(*this, pixel, params.data(), settings.controls);
}

}  // namespace Quillon
