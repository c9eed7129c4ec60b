#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "host/orvmediatypes/ColorSpace.h"

namespace CHR {

/// Signal to linear light and back, for pixels of one colour space: red, green, blue, red and so
/// on, in place. Linear 1.0 is graphics white. Nothing is clamped; NaN stays NaN.
///
/// By H.273 transfer characteristic: 1, 6, 11, 14 and 15 are shown by BT.1886 with a black of 0
/// (power 2.4); 4 and 5 by powers of 2.2 and 2.8; 7, 8, 13 and 17 by their own curves. Of all
/// these signal 1.0 is graphics white, but for 17 (see `DecodeSt428`). 16 (PQ) and 18 (HLG) are in
/// nits, divided by graphics white.
class TransferCurve {
 public:
  /// `whiteNits`: luminance of graphics white. Nothing for other transfers or primaries.
  static std::optional<TransferCurve> Of(const orvmediatypes::color::ColorSpace& colorSpace,
                                         double whiteNits);

  void Decode(std::span<double> rgb) const;
  void Encode(std::span<double> rgb) const;

  /// Whether equal signals mean equal light.
  friend bool operator==(const TransferCurve&, const TransferCurve&) = default;

 private:
  TransferCurve() = default;

  /// Code point; those that mean the same curve are one.
  std::uint8_t transfer_ = 0;
  double whiteNits_ = 0.0;
  // HLG alone.
  double hlgPeakNits_ = 0.0;
  double hlgGamma_ = 0.0;
  std::array<double, 3> luminanceWeights_{};
};

/// The code point that stands for all that are shown alike; 0 for transfers not known here.
std::uint8_t CanonicalTransfer(std::uint8_t transfer);

}  // namespace CHR
