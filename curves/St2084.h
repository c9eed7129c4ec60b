#pragma once

#include "curves/math64.h"

// SMPTE ST 2084 (PQ), as in ITU-R BT.2100-2, table 4. Signals run from 0 to 1, linear values are
// nits, 0 to 10000. Nothing is clamped above: both directions go on as far as the formula does.

#define QUILLON_ST2084_M1 0.1593017578125
#define QUILLON_ST2084_M2 78.84375

/// EOTF: a code value to nits. 0 at and below 0. The formula has a pole at a code value near 1.99;
/// from there on the result is infinite.
QUILLON_FUNCTION double DecodeSt2084(double signal) {
  if (signal <= 0.0) return 0.0;
  const double p = Power64(signal, 1.0 / QUILLON_ST2084_M2);
  const double denominator = 18.8515625 - 18.6875 * p;
  if (denominator <= 0.0) return QUILLON_INFINITY;
  const double numerator = p - 0.8359375;
  if (numerator <= 0.0) return 0.0;
  return 10000.0 * Power64(numerator / denominator, 1.0 / QUILLON_ST2084_M1);
}

/// From the first power of the inverse EOTF, that of nits / 10000, to what the second is taken of.
QUILLON_WIDE_CURVE Wide St2084Ratio(Wide power) {
  return (0.8359375 + 18.8515625 * power) / (1.0 + 18.6875 * power);
}

/// Inverse EOTF: nits to a code value. Infinite light lands on the pole of the EOTF.
///
/// Deliberate: 0 at and below 0, where the formula says 7.3e-7, so that black is 0 both ways.
QUILLON_FUNCTION double EncodeSt2084(double nits) {
  if (nits <= 0.0) return 0.0;
  const double power = Power64(nits / 10000.0, QUILLON_ST2084_M1);
  const double ratio = power == QUILLON_INFINITY ? 18.8515625 / 18.6875 : St2084Ratio(power);
  return Power64(ratio, QUILLON_ST2084_M2);
}
