#pragma once

#include "curves/Language.h"

// IEEE 754 binary16 in the low bits of an unsigned integer, to float and back, by integers alone:
// devices differ in what their own conversions do with NaN and subnormals.

/// The float of the same value. NaN keeps its payload.
QUILLON_FUNCTION float FromHalf(unsigned bits) {
  const unsigned sign = (bits & 0x8000U) << 16;
  const unsigned magnitude = bits & 0x7fffU;
  // Subnormals are whole numbers of 2^-24.
  if (magnitude < 0x0400U) {
    return RealOf(sign | BitsOf((float)magnitude * 0x1p-24f), 0.0f);
  }
  // The exponents' biases differ by 112; infinity and NaN have the largest exponent of both.
  const unsigned rebias = magnitude >= 0x7c00U ? 224U << 23 : 112U << 23;
  return RealOf(sign | ((magnitude << 13) + rebias), 0.0f);
}

/// The nearest half, ties to even; infinity from 65520 on. NaN becomes the quiet NaN of its sign.
QUILLON_FUNCTION unsigned ToHalf(float value) {
  const unsigned bits = BitsOf(value);
  const unsigned sign = (bits & 0x80000000U) >> 16;
  const unsigned magnitude = bits & 0x7fffffffU;
  if (magnitude > 0x7f800000U) return sign | 0x7e00U;
  if (magnitude >= (127U + 16U) << 23) return sign | 0x7c00U;
  if (magnitude < (127U - 14U) << 23) {
    // At 0.5 a float's step is 2^-24, that of subnormal halves.
    return sign | (BitsOf(RealOf(magnitude, 0.0f) + 0.5f) - BitsOf(0.5f));
  }
  const unsigned odd = (magnitude >> 13) & 1U;
  return sign | ((magnitude - (112U << 23) + 0x0fffU + odd) >> 13);
}
