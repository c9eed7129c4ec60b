#pragma once

#include <cstdint>

// Records come from outside: any 32-bit value may stand in one. What has no name here is refused
// with 0xA00F000C where the step applies. The numbers are fixed.

namespace orvmediatypes::color {

/// Tone-map algorithm of a settings record.
enum class ToneMapAlgorithmType : std::int32_t {
  /// No tone map. Refused, should the host call it applicable all the same.
  None = 0,
  /// Whatever `PX::ToneMappingUtils::GetAdjustedToneMapAlgoAndKnee` chooses.
  Automatic = 1,
  /// ITU-R BT.2390, on the largest of red, green and blue. Like the next, refused with 0xA00F000F
  /// in system memory where the source has no range, or the destination's peak is the source's.
  ITU2390MaxRGB = 2,
  /// ITU-R BT.2390, on each channel.
  ITU2390RGBByChannel = 3,
  /// ITU-R BT.2446 method A, on each channel. Takes its peaks in nits.
  ITU2446A = 4,
  /// A soft knee on the largest channel, and as much desaturation as each channel's knee asks for.
  HuePreservationDesaturation = 5,
  /// A rational curve on the largest channel.
  CARToneCurve = 6,
};

/// Gamut-compression algorithm of a settings record. It runs before the tone map.
enum class GamutCompressionAlgorithmType : std::int32_t {
  /// No compression. Refused, should the host call it applicable all the same.
  None = 0,
  /// Distances from the largest channel, compressed. Does nothing where the source's full signal is
  /// no more than 1.0 in the destination.
  Reinhard = 1,
  /// Towards a grey, as far as the smallest channel needs it.
  Desaturation = 2,
};

static_assert(sizeof(ToneMapAlgorithmType) == 4 && sizeof(GamutCompressionAlgorithmType) == 4);

}  // namespace orvmediatypes::color
