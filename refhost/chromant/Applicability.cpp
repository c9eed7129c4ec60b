#include "host/chromant/Applicability.h"

#include <algorithm>
#include <cstdint>

#include "cpu/GamutCompression.h"
#include "host/chromant/Conversion.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"
#include "tonemap/Algorithms.h"

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
  const auto metadataNits = RefHost::MetadataPeakNits(settings.destinationColorSpace);
  const float destinationNits = metadataNits.has_value()
                                    ? static_cast<float>(*metadataNits)
                                    : Nits(settings.destinationColorSpace, colorManagement, 1.0F);
  // The same peak comes out a little different by way of different transfer functions.
  constexpr float kRounding = 1e-5F;
  return sourceNits > destinationNits * (1.0F + kRounding);
}

bool IsSourceGamutOutsideDestination(const ToneMapSettings& settings) {
  const auto source = RefHost::ChromaticitiesOf(settings.sourceColorSpace);
  const auto destination = RefHost::ChromaticitiesOf(settings.destinationColorSpace);
  if (!source.has_value() || !destination.has_value()) return false;
  // Each column is a source primary in the destination's light.
  const RefHost::Matrix3 matrix = RefHost::RgbToRgb(*source, *destination);
  constexpr double kRounding = 1e-4;  // of coordinates in files
  return *std::min_element(matrix.begin(), matrix.end()) < -kRounding;
}

}  // namespace

bool IsToneMappingApplicable(const ToneMapSettings& settings) {
  if (settings.algorithmType == ToneMapAlgorithmType::None) return false;
  const bool isKnown = settings.algorithmType == ToneMapAlgorithmType::Automatic ||
                       Quillon::FindToneCurve(settings.algorithmType) != nullptr;
  // What is not known is left to the engine, which refuses it.
  return !isKnown || IsSourcePeakAboveDestination(settings);
}

bool IsGamutCompressionApplicable(const GamutMappingSettings& settings) {
  if (settings.algorithmType == GamutCompressionAlgorithmType::None) return false;
  const bool isKnown = Quillon::FindGamutCurve(settings.algorithmType) != nullptr;
  return !isKnown || IsSourceGamutOutsideDestination(settings.toneMapSettings);
}

bool IsGamutMappingApplicable(const GamutMappingSettings& settings) {
  return IsGamutCompressionApplicable(settings) ||
         IsToneMappingApplicable(settings.toneMapSettings);
}

}  // namespace CHR
