#pragma once

#include "curves/Language.h"

// Power, logarithm and exponential of floats, with the special values of the C library's powf, logf
// and expf. Evaluated in double precision to within 2^-37 and rounded to float once: the result is
// the float nearest to the true value but for about one in 10^4, and never 1 ulp from it.
//
// Built from operations that IEEE 754 rounds exactly, and so the same bits everywhere; no fused
// multiply-add, which not every processor has.

QUILLON_CURVE Real Magnitude(Real x) { return RealOf(BitsOf(x) & 0x7fffffffU, x); }

/// log2(x) for positive normal x, within 2^-43 of its magnitude or of 1.
///
/// x = 2^k m with m in [sqrt(1/2), sqrt(2)); s = (m - 1) / (m + 1); log2(m) is a series in odd
/// powers of s.
QUILLON_WIDE_CURVE Wide Log2OfNormal(Wide x) {
  const QUILLON_WIDE_BITS shifted = WideBitsOf(x) + (0x3ff0000000000000U - 0x3fe6a09e667f3bcdU);
  const Wide m = WideOf((shifted & 0xfffffffffffffU) + 0x3fe6a09e667f3bcdU, x);
  // The double 2^52 + 1023 + k, put together from its bits.
  const Wide k = WideOf((shifted >> 52) | 0x4330000000000000U, x) - (0x1p52 + 1023.0);
  const Wide s = (m - 1.0) / (m + 1.0);
  const Wide z = s * s;
  const Wide zz = z * z;
  const Wide s0 = 0x1.2776c476de79dp-1 * z + 0x1.ec709dc3b7ad1p-1;
  const Wide s1 = 0x1.47d58fb00ade9p-2 * z + 0x1.a618a26bc5872p-2;
  const Wide series = s0 + zz * (s1 + zz * 0x1.1e1ddf5aaaeeep-2);
  // 2 / ln 2
  return k + (0x1.71547652b82fep1 * s + s * z * series);
}

/// 2^x for |x| up to 1020, within 2^-38.
QUILLON_WIDE_CURVE Wide Exp2OfModerate(Wide x) {
  const Wide shifted = x + 0x1.8p52;
  const Wide part = x - (shifted - 0x1.8p52);
  const Wide p2 = part * part;
  const Wide p4 = p2 * p2;
  const Wide s0 = 0x1.ebfbdff818eaep-3 * part + 0x1.62e42fef9adc8p-1;
  const Wide s1 = 0x1.3b2ab72de0dcep-7 * part + 0x1.c6b08db22c3edp-5;
  const Wide s2 = 0x1.4308810253179p-13 * part + 0x1.5d8763a271bbp-10;
  const Wide s3 = 0x1.6402e5abc2p-20 * part + 0x1.00ced1aba1c73p-16;
  const Wide series = (s0 + p2 * s1) + p4 * (s2 + p2 * s3);
  return WideOf(WideBitsOf(1.0 + part * series) + (WideBitsOf(shifted) << 52), x);
}

/// 2^x for any x that is a number, infinite from 1020 on and 0 from -1020 down.
QUILLON_WIDE_CURVE Wide Exp2OfAny(Wide x) {
  const Wide power = Exp2OfModerate(x);
  const QUILLON_WIDE_BITS zero = WideBitsOf(x) & 0U;
  const Wide finite = x > -1020.0 ? power : WideOf(zero, x);
  return x < 1020.0 ? finite : WideOf(zero | 0x7ff0000000000000U, x);
}

/// pow(x, y) for any x and y, ISO C F.10.4.4.
QUILLON_CURVE Real PowerOfAnything(Real x, Real y) {
  const Real infinity = Uniform(QUILLON_INFINITY, x);
  const Real zero = Uniform(0.0f, x);
  const Real one = Uniform(1.0f, x);
  const Real magnitude = Magnitude(x);
  const Real magnitudeOfY = Magnitude(y);

  const Real moderateY = magnitudeOfY < 0x1p34f ? y : (y > 0.0f ? 0x1p34f * one : -0x1p34f * one);
  Real power = Narrow(Exp2OfAny(Widen(moderateY) * Log2OfNormal(Widen(magnitude))), x);
  power = magnitude == 0.0f ? (y > 0.0f ? zero : infinity) : power;
  power = magnitude == infinity ? (y > 0.0f ? infinity : zero) : power;

  // Adding 2^23 rounds to a whole number, adding 2^24 to an even one, as floats from there on are.
  const Real whole = (magnitudeOfY + 0x1p23f) - 0x1p23f;
  const Real even = (magnitudeOfY + 0x1p24f) - 0x1p24f;
  const QUILLON_MASK isWhole = (magnitudeOfY >= 0x1p23f) | (whole == magnitudeOfY);
  const QUILLON_MASK isOdd = (magnitudeOfY < 0x1p24f) & isWhole & (even != magnitudeOfY);
  power = ((BitsOf(x) > 0x7fffffffU) & isOdd) ? -power : power;
  power = ((x < 0.0f) & (magnitude < infinity) & !isWhole) ? Uniform(QUILLON_NAN, x) : power;

  const Real ofInfiniteY =
      magnitude == 1.0f ? one : ((magnitude > 1.0f) == (y > 0.0f) ? infinity : zero);
  power = magnitudeOfY == infinity ? ofInfiniteY : power;
  power = x != x ? x : power;
  power = y != y ? y : power;
  return ((y == 0.0f) | (x == 1.0f)) ? one : power;
}

/// Whether pow(x, y), y above 0 and up to 6, is what OrdinaryPower makes of logarithms: x is
/// positive and finite, or 0, which is frequent in pictures.
QUILLON_CURVE QUILLON_MASK HasOrdinaryPower(Real x) {
  return ((x > 0.0f) & (x <= 0x1.fffffep127f)) | (BitsOf(x) == 0U);
}

/// That power, given the exponential of y times the logarithm of x, which means nothing for 0.
QUILLON_CURVE Real OrdinaryPower(Real x, Real exponential) {
  return BitsOf(x) == 0U ? Uniform(0.0f, x) : exponential;
}

/// pow(x, y) for the same y in every lane.
QUILLON_CURVE Real Power(Real x, float y) {
  const Real exponential = Narrow(Exp2OfModerate((double)y * Log2OfNormal(Widen(x))), x);
  const QUILLON_MASK isOrdinary = HasOrdinaryPower(x);
  const int isModerateY = y > 0.0f && y <= 6.0f;
  if (isModerateY && AllOf(isOrdinary)) return OrdinaryPower(x, exponential);
  const Real any = PowerOfAnything(x, Uniform(y, x));
  return isModerateY ? (isOrdinary ? OrdinaryPower(x, exponential) : any) : any;
}

/// pow(base, y) for the same base in every lane.
QUILLON_CURVE Real PowerOfBase(float base, Real y) {
  const Real power = Narrow(Exp2OfModerate(Log2OfNormal(Widen(base)) * Widen(y)), y);
  const QUILLON_MASK isOrdinary = Magnitude(y) <= 6.0f;
  const int isOrdinaryBase = base > 0.0f && base <= 0x1.fffffep127f;
  if (isOrdinaryBase && AllOf(isOrdinary)) return power;
  const Real any = PowerOfAnything(Uniform(base, y), y);
  return isOrdinaryBase ? (isOrdinary ? power : any) : any;
}

/// log(x), the natural one, given Log2OfNormal(Widen(x)), which means nothing where x
/// has no such logarithm. A step of its own for those who take the logarithms of many first.
QUILLON_CURVE Real LogarithmFromLog(Real x, QUILLON_WIDE logarithm) {
  const Real ordinary = Narrow(logarithm * 0x1.62e42fefa39efp-1, x);
  const QUILLON_MASK isOrdinary = (x > 0.0f) & (x <= 0x1.fffffep127f);
  if (AllOf(isOrdinary)) return ordinary;
  Real any = x == 0.0f ? Uniform(-QUILLON_INFINITY, x) : Uniform(QUILLON_NAN, x);
  any = ((x == QUILLON_INFINITY) | (x != x)) ? x : any;
  return isOrdinary ? ordinary : any;
}

/// log(x), the natural one.
QUILLON_CURVE Real Logarithm(Real x) { return LogarithmFromLog(x, Log2OfNormal(Widen(x))); }

/// exp(x).
QUILLON_CURVE Real Exponential(Real x) {
  const Real exponential = Narrow(Exp2OfAny(Widen(x) * 0x1.71547652b82fep0), x);
  return x != x ? x : exponential;
}
