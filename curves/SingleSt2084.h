#pragma once

#include "curves/Language.h"

// SMPTE ST 2084 (PQ) both ways in single precision alone, for many pixels at a time. Light runs
// from 0 to 1, which is 10000 nits. Within 4e-6 of the light from 0.005 nits on and 2e-6 of the
// signal; what lies below 2^-40 of the light, or below a signal of 2^-17, is 0.
//
// Built from operations that IEEE 754 rounds exactly, and so the same bits everywhere.

/// log2((1 + s) / (1 - s)) for |s| up to 0.172.
QUILLON_CURVE Real SingleLog2OfRatio(Real s) {
  const Real z = s * s;
  const Real series = (0x1.ba14bcp-2f * z + 0x1.274734p-1f) * z + 0x1.ec70e6p-1f;
  return s * (series * z + 0x1.715476p+1f);
}

/// log2(x) for positive normal x.
QUILLON_CURVE Real SingleLog2(Real x) {
  const QUILLON_BITS shifted = BitsOf(x) + (0x3f800000U - 0x3f3504f3U);
  const Real m = RealOf((shifted & 0x007fffffU) + 0x3f3504f3U, x);
  // The float 2^23 + 127 + k, put together from its bits.
  const Real k = RealOf((shifted >> 23) | 0x4b000000U, x) - (0x1p23f + 127.0f);
  return k + SingleLog2OfRatio((m - 1.0f) / (m + 1.0f));
}

/// 2^x for |x| up to 120.
QUILLON_CURVE Real SingleExp2(Real x) {
  const Real shifted = x + 0x1.8p23f;
  const Real part = x - (shifted - 0x1.8p23f);
  const Real p2 = part * part;
  const Real s0 = 0x1.ebfbep-3f * part + 0x1.62e43p-1f;
  const Real s1 = 0x1.3b2a1cp-7f * part + 0x1.c6aeccp-5f;
  const Real s2 = 0x1.444p-13f * part + 0x1.5f48cp-10f;
  const Real series = s0 + p2 * (s1 + p2 * s2);
  return RealOf(BitsOf(1.0f + part * series) + (BitsOf(shifted) << 23), x);
}

/// 1 - 2^x for x from -0.3 to 0.02, to within a few units in its own last place.
QUILLON_CURVE Real SingleOneLessExp2(Real x) {
  const Real series = ((0x1.5c91dcp-10f * x + 0x1.3b26bap-7f) * x + 0x1.c6b082p-5f) * x;
  return -x * ((series + 0x1.ebfbep-3f) * x + 0x1.62e43p-1f);
}

/// Inverse EOTF. Light is a number up to 16.
///
/// Both formulas are written round their distance from 1, where the power of 78.84 would make much
/// of what is rounded off.
QUILLON_CURVE Real EncodeSingleSt2084(Real light) {
  const QUILLON_MASK isDark = !(light >= 0x1p-40f);
  const Real lit = isDark ? Uniform(0x1p-40f, light) : light;
  const Real power = SingleExp2(0.1593017578125f * SingleLog2(lit));
  const Real below = 0.1640625f * (1.0f - power) / (1.0f + 18.6875f * power);
  const Real signal = SingleExp2(-78.84375f * SingleLog2OfRatio(below / (2.0f - below)));
  return isDark ? Uniform(0.0f, light) : signal;
}

/// EOTF. The signal is a number up to 1.
QUILLON_CURVE Real DecodeSingleSt2084(Real signal) {
  const QUILLON_MASK isDark = !(signal >= 0x1p-17f);
  const Real lit = isDark ? Uniform(0x1p-17f, signal) : signal;
  const Real below = SingleOneLessExp2(SingleLog2(lit) * (1.0f / 78.84375f));
  const Real ratio = (0.1640625f - below) / (0.1640625f + 18.6875f * below);
  const Real light = SingleExp2((1.0f / 0.1593017578125f) * SingleLog2(ratio));
  return isDark ? Uniform(0.0f, signal) : light;
}
