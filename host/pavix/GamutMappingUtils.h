#pragma once

#include <string>
#include <type_traits>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "host/pavix/ToneMappingUtils.h"

namespace PX::GamutMappingUtils {

/// The leading part of `GamutMappingSettings`.
struct GamutCompressionSettings {
  orvmediatypes::color::GamutCompressionAlgorithmType algorithmType =
      orvmediatypes::color::GamutCompressionAlgorithmType::None;
};
static_assert(sizeof(GamutCompressionSettings) == 4);

/// Settings of one call: gamut compression first, then the tone map, embedded whole.
struct GamutMappingSettings : GamutCompressionSettings {
  ToneMappingUtils::ToneMapSettings toneMapSettings;
};
static_assert(std::is_base_of_v<GamutCompressionSettings, GamutMappingSettings>);
static_assert(sizeof(GamutMappingSettings) == alignof(ToneMappingUtils::ToneMapSettings) +
                                                  sizeof(ToneMappingUtils::ToneMapSettings));

/// Display name of an algorithm; any value has one. The engine always passes form 1.
std::string GetGamutCompressionMethodName(
    orvmediatypes::color::GamutCompressionAlgorithmType algorithmType, int form);

}  // namespace PX::GamutMappingUtils
