#pragma once

#include <cstddef>
#include <string>
#include <type_traits>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/ToneMapControls.h"

namespace PX::ToneMappingUtils {

/// How a source is brought to the peak of a destination.
struct ToneMapSettings {
  /// The host's own; the engine copies it and never looks at it.
  bool reserved = false;
  orvmediatypes::color::ColorSpace sourceColorSpace;
  orvmediatypes::color::ColorSpace destinationColorSpace;
  orvmediatypes::color::ColorManagementSettings colorManagementSettings;
  orvmediatypes::color::ToneMapControls controls;
  /// Knee of the tone curve, 0 to 1 of the destination's peak.
  float knee = 0.5F;
  orvmediatypes::color::ToneMapAlgorithmType algorithmType =
      orvmediatypes::color::ToneMapAlgorithmType::None;
};

static_assert(std::is_standard_layout_v<ToneMapSettings>);
static_assert(sizeof(ToneMapSettings::reserved) == 1);
static_assert(offsetof(ToneMapSettings, reserved) == 0);
static_assert(offsetof(ToneMapSettings, sourceColorSpace) <
              offsetof(ToneMapSettings, destinationColorSpace));
static_assert(offsetof(ToneMapSettings, destinationColorSpace) <
              offsetof(ToneMapSettings, colorManagementSettings));
static_assert(offsetof(ToneMapSettings, colorManagementSettings) <
              offsetof(ToneMapSettings, controls));
static_assert(offsetof(ToneMapSettings, knee) == offsetof(ToneMapSettings, controls) + 16);
static_assert(offsetof(ToneMapSettings, algorithmType) == offsetof(ToneMapSettings, knee) + 4);

/// The settings' source peak in nits.
float ConvertPeakLinearSignalToLuminance(const ToneMapSettings& settings);

/// The controls version to work with, given the one of a record.
int AdjustToneMapSettingsVersionForNCMVersionHandle(int version);

/// The automatic choice: given the scaled source peak in linear light, replaces algorithm and
/// knee.
void GetAdjustedToneMapAlgoAndKnee(float peak,
                                   orvmediatypes::color::ToneMapAlgorithmType& algorithmType,
                                   float& knee);

/// Display name of an algorithm; any value has one. The engine always passes form 1.
std::string GetLocalizedToneMappingMethodName(
    orvmediatypes::color::ToneMapAlgorithmType algorithmType, int form);

}  // namespace PX::ToneMappingUtils
