#pragma once

#include <cstdint>

namespace orvmediatypes::color {

/// Tone-map algorithm of a settings record. Records come from outside: any 32-bit value may
/// stand in one.
enum class ToneMapAlgorithmType : std::int32_t {
  None = 0,
  Automatic = 1,
  ITU2390MaxRGB = 2,
  ITU2390RGBByChannel = 3,
  ITU2446A = 4,
  HuePreservationDesaturation = 5,
  CARToneCurve = 6,
};

/// Gamut-compression algorithm of a settings record; any 32-bit value may stand in one.
enum class GamutCompressionAlgorithmType : std::int32_t {
  None = 0,
  Reinhard = 1,
  Desaturation = 2,
};

static_assert(sizeof(ToneMapAlgorithmType) == 4 && sizeof(GamutCompressionAlgorithmType) == 4);

}  // namespace orvmediatypes::color
