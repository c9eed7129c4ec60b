#pragma once

namespace RefHost {

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

/// For the transfer functions that have a quick form.
struct QuickTables {
  /// The EOTF's first power, from 2^-7 up to 1 with the error of Power64, which what follows
  /// makes larger: where a quick curve is to come near to its model it has to have the same.
  QuickPowerTable pqSignal;
  QuickPowerTable pqLight;  ///< the EOTF's second power
  QuickPowerTable root24;   ///< 1 / 2.4
};

/// Made once.
const QuickTables& GetQuickTables();

}  // namespace RefHost
