#pragma once

#include <cstddef>

#include "cpu/GamutCompression.h"
#include "curves/Bt2390.h"
#include "tonemap/Algorithms.h"

namespace Quillon {

/// A gamut compression of the engine's by its place among GamutCurves, or none.
enum class RowGamut : int { None = -1 };
template <class Curve>
inline constexpr auto kRowGamutOf = static_cast<RowGamut>(PlaceIn<Curve>(GamutCurves{}));

/// A tone curve of the engine's by its place among ToneCurves, or one of these.
enum class RowTone : int {
  None = -2,
  HighlightOnly = -1,  ///< BT.2390 whose knee lies at or above the source's peak
};
template <class Curve>
inline constexpr auto kRowToneOf = static_cast<RowTone>(PlaceIn<Curve>(ToneCurves{}));

/// BT.2390 for every whole number of nits from 0 to 9999, and for every entry of the PQ decoding
/// table: the curve's own arithmetic on all that the two PQ tables can give.
struct Bt2390Lookups {
  static constexpr int kNits = 10000;
  static constexpr int kCodes = 8191;
  const float* mapped;   ///< by channel, by nits: result of the curve, 1.0 at white
  const float* encoded;  ///< MaxRGB, by nits: PQ code value, source black replaced by destination's
  const float* ratio;    ///< MaxRGB, by nits: what the largest channel is mapped by
  const float* decoded;  ///< by PQ code value in steps of 1/8191: light, 1.0 at white
};

/// Gamut compression and tone curve of a run of pixels with all that they read.
struct RowCurves {
  RowGamut gamut = RowGamut::None;
  RowTone tone = RowTone::None;
  const float* gamutParams = nullptr;
  const float* toneParams = nullptr;
  orvmediatypes::color::ToneMapControls controls;
  EetfParams eetf{};
  Bt2390Lookups tables{};
  /// Whether the host encodes PQ as curves/St2084.h has it, so that light beyond the tables need
  /// not go through the host a pixel at a time.
  bool encodesAsSt2084 = false;
  /// BT.2390 for a pixel beyond the tables, highlights desaturated already. `self` is this record.
  void (*mapBeyondTables)(const RowCurves& self, float* pixel) = nullptr;
};

/// Maps `count` pixels of four floats in place.
using MapRunFunction = void (*)(const RowCurves& curves, float* pixels, std::size_t count);

/// The same function, built for the instruction sets by name. Results are the same bits.
void MapRunBaseline(const RowCurves& curves, float* pixels, std::size_t count);
#if defined(__x86_64__)
void MapRunAvx2(const RowCurves& curves, float* pixels, std::size_t count);
void MapRunAvx512(const RowCurves& curves, float* pixels, std::size_t count);
#endif

}  // namespace Quillon
