#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace orvmediatypes::color {

/// The dials of a tone map.
struct ToneMapControls {
  std::int32_t version = 3;
  /// Source peak as a signal value in the source's own encoding.
  float peak = 1.0F;
  /// Multiplies the peak and every input pixel.
  float peakGain = 1.0F;
  /// 0 to 1: weight of the colour-preserving share.
  float colorPreservation = 0.5F;

  std::int32_t GetVersion() const;
};

static_assert(std::is_standard_layout_v<ToneMapControls>);
static_assert(offsetof(ToneMapControls, version) == 0);
static_assert(offsetof(ToneMapControls, peak) == 4);
static_assert(offsetof(ToneMapControls, peakGain) == 8);
static_assert(offsetof(ToneMapControls, colorPreservation) == 12);
static_assert(sizeof(ToneMapControls) == 16);

}  // namespace orvmediatypes::color
