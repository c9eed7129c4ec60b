#pragma once

namespace CHR {

/// Parts that a signal's mantissa, from 1 to 2, is cut into, and the powers of two below 2 that
/// tables go down to. Both are picked by four bits of a double.
inline constexpr int kParts = 16;
inline constexpr int kHalvings = 16;

/// x^y from 2^-15 up to 2: the power of the mantissa as a series about the middle of its part,
/// times that of the exponent.
struct QuickPowerTable {
  static constexpr int kDegree = 6;
  alignas(64) double series[kDegree + 1][kParts];
  alignas(64) double ofExponent[kHalvings];
};

/// y log2(x) from 2^-15 up to 2: that of the middle of the mantissa's part, and a series in what
/// the mantissa is above it, relative to it.
struct QuickLogTable {
  static constexpr int kDegree = 6;
  double series[kDegree + 1];
  alignas(64) double ofMiddle[kParts];
  alignas(64) double reciprocalOfMiddle[kParts];
  alignas(64) double ofExponent[kHalvings];
};

/// For the transfer functions that have a quick form.
struct QuickTables {
  QuickLogTable logOfPqSignal;  ///< times the exponent of the EOTF's first power
  QuickPowerTable pqLight;      ///< the EOTF's second power
  QuickPowerTable root24;       ///< 1 / 2.4
};

/// Made once.
const QuickTables& GetQuickTables();

}  // namespace CHR
