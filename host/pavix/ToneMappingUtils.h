#pragma once

#include <cstddef>
#include <string>
#include <type_traits>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/ToneMapControls.h"

// The functions below are called on the thread of the engine's caller, and from several threads at
// once where several frames are mapped. They keep no reference to what they are given.

namespace PX::ToneMappingUtils {

/// How a source is brought to the peak of a destination. The order of the fields is fixed.
struct ToneMapSettings {
  /// The host's own; the engine copies it and never looks at it.
  bool reserved = false;
  /// What the source's pixels mean. Empty is told by a trace message; the peak is 1.0 then.
  orvmediatypes::color::ColorSpace sourceColorSpace;
  /// What the destination's pixels are to mean. Its peak and its luminance weights count.
  orvmediatypes::color::ColorSpace destinationColorSpace;
  /// How colours are converted; not used where the controls' version is below 3 (see
  /// docs/decisions/contract.md for the places that use it all the same).
  orvmediatypes::color::ColorManagementSettings colorManagementSettings;
  /// Version, source peak, peak gain, colour preservation.
  orvmediatypes::color::ToneMapControls controls;
  /// Knee of the tone curve, 0 to 1 of the destination's peak. BT.2390 and BT.2446 method A have
  /// none that is set.
  float knee = 0.5F;
  /// Which curve. In the engine's copy, what an automatic choice has come to.
  orvmediatypes::color::ToneMapAlgorithmType algorithmType =
      orvmediatypes::color::ToneMapAlgorithmType::None;
};

// What the engine relies on: the order, and controls, knee and algorithm one behind the other.
// Sizes and places of the three types of the host's are its own.
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

/// The settings' source peak in nits, peak gain left out: `controls.peak`, decoded as a signal of
/// the source colour space. Asked for BT.2446 method A alone, once a frame, with the version
/// adjusted and all else as the caller set it. The source may be empty: what it is then, above 0,
/// is the host's choice.
float ConvertPeakLinearSignalToLuminance(const ToneMapSettings& settings);

/// The controls version to work with, given the one of a record. Asked once for each frame that is
/// tone mapped, before all else; what is below 3 gets default colour management.
int AdjustToneMapSettingsVersionForNCMVersionHandle(int version);

/// The automatic choice. `peak` is the source's peak with its gain, in linear light with 1.0 at
/// graphics white; `algorithmType` comes in as Automatic, `knee` as the record has it, and both are
/// replaced. HuePreservationDesaturation is the one useful answer: the parameters are those of that
/// curve whatever is chosen. The engine refuses others with 0xA00F000F, for lack of parameters, and
/// with 0xA00F000C where no algorithm was chosen.
void GetAdjustedToneMapAlgoAndKnee(float peak,
                                   orvmediatypes::color::ToneMapAlgorithmType& algorithmType,
                                   float& knee);

/// Display name of an algorithm, for trace messages; any 32-bit value has one. The engine passes 1
/// for `form`, and asks only when a failure is traced.
std::string GetLocalizedToneMappingMethodName(
    orvmediatypes::color::ToneMapAlgorithmType algorithmType, int form);

}  // namespace PX::ToneMappingUtils
