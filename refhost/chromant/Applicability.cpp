#include "host/chromant/Applicability.h"

#include <algorithm>
#include <cstdint>

#include "host/chromant/Conversion.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;
using PX::ToneMappingUtils::ToneMapSettings;

namespace CHR {

namespace {

/// Luminance of a signal value of full scale or peak, in nits. A space that is not known here
/// counts as linear.
float Nits(const ColorSpace& colorSpace, const ColorManagementSettings& settings, float signal) {
  const auto white = static_cast<std::uint32_t>(settings.GetGraphicsWhiteLuminance());
  return ConvertSignalToLinearValue(colorSpace, settings, signal) * static_cast<float>(white);
}

bool IsSourcePeakAboveDestination(const ToneMapSettings& settings) {
  constexpr int kColorManagedVersion = 3;
  const ColorManagementSettings colorManagement =
      settings.controls.GetVersion() < kColorManagedVersion ? ColorManagementSettings()
                                                            : settings.colorManagementSettings;
  const float sourceNits =
      Nits(settings.sourceColorSpace, colorManagement, settings.controls.peak) *
      settings.controls.peakGain;
  const auto metadataNits = orvmediatypes::color::MetadataPeakNits(settings.destinationColorSpace);
  const float destinationNits = metadataNits.has_value()
                                    ? static_cast<float>(*metadataNits)
                                    : Nits(settings.destinationColorSpace, colorManagement, 1.0F);
  // The same peak comes out a little different by way of different transfer functions.
  constexpr float kRounding = 1e-5F;
  return sourceNits > destinationNits * (1.0F + kRounding);
}

bool IsSourceGamutOutsideDestination(const ToneMapSettings& settings) {
  const auto source = H273::ChromaticitiesOf(settings.sourceColorSpace);
  const auto destination = H273::ChromaticitiesOf(settings.destinationColorSpace);
  if (!source.has_value() || !destination.has_value()) return false;
  // Each column is a source primary in the destination's light.
  const Matrix3 matrix = RgbToRgb(*source, *destination);
  constexpr double kRounding = 1e-4;  // of coordinates in files
  return *std::min_element(matrix.begin(), matrix.end()) < -kRounding;
}

}  // namespace

bool IsToneMappingApplicable(const ToneMapSettings& settings) {
  switch (settings.algorithmType) {
    case ToneMapAlgorithmType::None:
      return false;
    case ToneMapAlgorithmType::Automatic:
    case ToneMapAlgorithmType::ITU2390MaxRGB:
    case ToneMapAlgorithmType::ITU2390RGBByChannel:
    case ToneMapAlgorithmType::ITU2446A:
    case ToneMapAlgorithmType::HuePreservationDesaturation:
    case ToneMapAlgorithmType::CARToneCurve:
      return IsSourcePeakAboveDestination(settings);
    default:
      return true;  // left to the engine, which refuses it
  }
}

bool IsGamutCompressionApplicable(const GamutMappingSettings& settings) {
  switch (settings.algorithmType) {
    case GamutCompressionAlgorithmType::None:
      return false;
    case GamutCompressionAlgorithmType::Reinhard:
    case GamutCompressionAlgorithmType::Desaturation:
      return IsSourceGamutOutsideDestination(settings.toneMapSettings);
    default:
      return true;  // left to the engine, which refuses it
  }
}

bool IsGamutMappingApplicable(const GamutMappingSettings& settings) {
  return IsGamutCompressionApplicable(settings) ||
         IsToneMappingApplicable(settings.toneMapSettings);
}

}  // namespace CHR
