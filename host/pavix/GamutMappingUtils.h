#pragma once

#include <string>
#include <type_traits>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "host/pavix/ToneMappingUtils.h"

// The settings of `Quillon::ApplyGamutMapping`. Programs fill them, and the host's applicability
// tests (host/chromant/Applicability.h) say which steps they ask for; the algorithms say which
// curve each step takes.

namespace PX::GamutMappingUtils {

/// The leading part of `GamutMappingSettings`: which gamut compression runs. Functions on pixels
/// are given this part alone.
struct GamutCompressionSettings {
  orvmediatypes::color::GamutCompressionAlgorithmType algorithmType =
      orvmediatypes::color::GamutCompressionAlgorithmType::None;
};
static_assert(sizeof(GamutCompressionSettings) == 4);

/// Settings of one call. A pixel goes through the gamut compression first and then through the tone
/// map. The record is its owner's: the engine reads it until its call returns, never writes it, and
/// makes each adjustment on a copy. The order of the fields is fixed.
struct GamutMappingSettings : GamutCompressionSettings {
  /// Embedded whole. Its colour spaces and colour-management settings count for both steps. They
  /// are not compared with the frames: a record that says otherwise is believed for the parameters
  /// of the curves, and the frames' own tags for the conversion of pixels.
  ToneMappingUtils::ToneMapSettings toneMapSettings;
};
// What the engine relies on: the algorithm first, then the tone map, nothing between and behind.
static_assert(std::is_base_of_v<GamutCompressionSettings, GamutMappingSettings>);
static_assert(sizeof(GamutMappingSettings) == alignof(ToneMappingUtils::ToneMapSettings) +
                                                  sizeof(ToneMappingUtils::ToneMapSettings));

/// Display name of an algorithm, for trace messages; any 32-bit value has one. The engine passes 1
/// for `form`, the one form there is here; it asks only when a failure is traced, on the thread of
/// its caller.
std::string GetGamutCompressionMethodName(
    orvmediatypes::color::GamutCompressionAlgorithmType algorithmType, int form);

}  // namespace PX::GamutMappingUtils
