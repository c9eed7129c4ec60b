// Questions about colour spaces and settings.

#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "host/pavix/ColorSpaces.h"
#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/ToneMappingUtils.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace PX::ColorSpaceUtils {

bool IsNewColorManagementEnabled() { return true; }
bool IsSDRColorSpace(const ColorSpace& /*colorSpace*/) { return false; }
bool IsHDRColorSpace(const ColorSpace& /*colorSpace*/) { return true; }
bool IsRec2100HLGColorSpace(const ColorSpace& /*colorSpace*/) { return false; }

int GetPeakLuminance(const ColorSpace& colorSpace) {
  int nits = -1;
  GetIfExistsPeakLuminanceFromColorSpaceMetaData(colorSpace, nits);
  return nits;
}

bool GetIfExistsPeakLuminanceFromColorSpaceMetaData(const ColorSpace& colorSpace, int& nits) {
  const std::int32_t peak = colorSpace.Description().peakLuminance;
  if (peak > 0) nits = peak;
  return peak > 0;
}

}  // namespace PX::ColorSpaceUtils

namespace PX::ColorSpaces {

const ColorSpace& OR2100PQ() {
  static const ColorSpace kSpace = [] {
    ColorDescription description;
    description.primaries = 9;
    description.transfer = 16;
    return ColorSpace(description);
  }();
  return kSpace;
}

}  // namespace PX::ColorSpaces

namespace PX::ToneMappingUtils {

float ConvertPeakLinearSignalToLuminance(const ToneMapSettings& settings) {
  const auto white = settings.colorManagementSettings.GetGraphicsWhiteLuminance();
  return CHR::ConvertSignalToLinearValue(settings.sourceColorSpace,
                                         settings.colorManagementSettings, settings.controls.peak) *
         static_cast<float>(white);
}

int AdjustToneMapSettingsVersionForNCMVersionHandle(int version) { return version; }

void GetAdjustedToneMapAlgoAndKnee(float /*peak*/, ToneMapAlgorithmType& algorithmType,
                                   float& /*knee*/) {
  algorithmType = ToneMapAlgorithmType::HuePreservationDesaturation;
}

std::string GetLocalizedToneMappingMethodName(ToneMapAlgorithmType algorithmType, int /*form*/) {
  return "tone map " + std::to_string(static_cast<int>(algorithmType));
}

}  // namespace PX::ToneMappingUtils

namespace PX::GamutMappingUtils {

std::string GetGamutCompressionMethodName(GamutCompressionAlgorithmType algorithmType,
                                          int /*form*/) {
  return "gamut compression " + std::to_string(static_cast<int>(algorithmType));
}

}  // namespace PX::GamutMappingUtils
