#pragma once

#if !defined(__OPENCL_VERSION__)
#include <cmath>  // sqrt, which OpenCL C has built in
#endif

#include "curves/math.h"

// Power, logarithm and exponential in double precision, for functions whose results are rounded to
// float. Relative to a true value between 2^-1020 and 2^1020, logarithms lie within 2^-43,
// exponentials and powers with exponents from -80 to 80 within 2^-37, other powers within 2^-33.5:
// the logarithm's error grows with the exponent, until no base but one near 1 has such a power. On
// a GPU they need its double precision.

QUILLON_FUNCTION double Magnitude64(double x) {
  return WideOf(WideBitsOf(x) & 0x7fffffffffffffffU, x);
}

/// |x| with the sign of `sign`.
QUILLON_FUNCTION double WithSignOf(double sign, double x) {
  return WideOf((WideBitsOf(x) & 0x7fffffffffffffffU) | (WideBitsOf(sign) & 0x8000000000000000U),
                x);
}

/// pow(x, y) for finite y; results and x below 2^-1020 count as 0. NaN for negative x, whatever y.
QUILLON_FUNCTION double Power64(double x, double y) {
  if (y == 0.0) return 1.0;
  if (!(x >= 0.0)) return QUILLON_NAN;
  if (x < 0x1p-1020) return y > 0.0 ? 0.0 : QUILLON_INFINITY;
  if (x == QUILLON_INFINITY) return y > 0.0 ? x : 0.0;
  return Exp2OfAny(y * Log2OfNormal(x));
}

/// log(x), the natural one, x below 2^-1020 counting as 0.
QUILLON_FUNCTION double Logarithm64(double x) {
  if (!(x >= 0.0)) return QUILLON_NAN;
  if (x < 0x1p-1020) return -QUILLON_INFINITY;
  if (x == QUILLON_INFINITY) return x;
  return Log2OfNormal(x) * 0x1.62e42fefa39efp-1;
}

/// exp(x).
QUILLON_FUNCTION double Exponential64(double x) {
  return x != x ? x : Exp2OfAny(x * 0x1.71547652b82fep0);
}
