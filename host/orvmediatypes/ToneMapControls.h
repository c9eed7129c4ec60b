#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Part of the settings record (host/pavix/ToneMappingUtils.h), which is its owner's. The engine
// reads the members of its own copy, where it has adjusted the first two; kernels get the other
// three as numbers.

namespace orvmediatypes::color {

/// The dials of a tone map: four members of 32 bits in this order, which is fixed.
struct ToneMapControls {
  /// From 3 on the record's colour-management settings count; below, default ones stand for them.
  std::int32_t version = 3;
  /// Source peak as a signal value in the source's own encoding. In the engine's copy it becomes
  /// linear light, 1.0 at graphics white, or nits for BT.2446 method A: what curves and kernels
  /// get.
  float peak = 1.0F;
  /// Multiplies the peak and every input pixel in linear light; 1 changes nothing. Neither this nor
  /// the peak is checked: not a number goes through.
  float peakGain = 1.0F;
  /// 0 to 1: weight of the colour-preserving share. 0 lets highlights lose their colour as the
  /// channels alone would have it, 1 keeps it. Values beyond are clamped where a curve takes a
  /// share of them, and used as they are where it mixes by them.
  float colorPreservation = 0.5F;

  /// `version`. The engine reads a record's version by this alone, and may ask more than once a
  /// call. Any thread.
  std::int32_t GetVersion() const;
};

// What the engine relies on.
static_assert(std::is_standard_layout_v<ToneMapControls>);
static_assert(offsetof(ToneMapControls, version) == 0);
static_assert(offsetof(ToneMapControls, peak) == 4);
static_assert(offsetof(ToneMapControls, peakGain) == 8);
static_assert(offsetof(ToneMapControls, colorPreservation) == 12);
static_assert(sizeof(ToneMapControls) == 16);

}  // namespace orvmediatypes::color
