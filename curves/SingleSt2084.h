#pragma once

#include "curves/Language.h"

// SMPTE ST 2084 (PQ) both ways in single precision alone, for many pixels at a time. Light runs
// from 0 to 1, which is 10000 nits. Within 4e-6 of the light from 0.005 nits on and 2e-6 of the
// signal; what lies below 2^-40 of the light, or below a signal of 2^-17, is 0.
//
// Built from operations that IEEE 754 rounds exactly, and so the same bits everywhere.

/// log2(x) for positive normal x.
QUILLON_CURVE Real SingleLog2(Real x) {
  const QUILLON_BITS shifted = BitsOf(x) + (0x3f800000U - 0x3f3504f3U);
  const Real f = RealOf((shifted & 0x007fffffU) + 0x3f3504f3U, x) - 1.0f;
  // The float 2^23 + 127 + k, put together from its bits.
  const Real k = RealOf((shifted >> 23) | 0x4b000000U, x) - (0x1p23f + 127.0f);
  const Real f2 = f * f;
  const Real s0 = -0x1.715474p-1f * f + 0x1.715476p+0f;
  const Real s1 = -0x1.715994p-2f * f + 0x1.ec73dep-2f;
  const Real s2 = -0x1.e9d1e6p-3f * f + 0x1.26d01cp-2f;
  const Real s3 = -0x1.a59aeap-3f * f + 0x1.ba8738p-3f;
  const Real series = (s0 + f2 * s1) + (f2 * f2) * (s2 + f2 * (s3 + f2 * 0x1.f841dcp-4f));
  return k + f * series;
}

/// -log2(1 - x) for x from -0.01 to 0.1645.
QUILLON_CURVE Real SingleLog2OfOneLess(Real x) {
  const Real x2 = x * x;
  const Real s0 = 0x1.71547cp-1f * x + 0x1.715476p+0f;
  const Real s1 = 0x1.732294p-2f * x + 0x1.ec6382p-2f;
  const Real s2 = 0x1.77f40ap-2f * x + 0x1.0faa7p-2f;
  return x * (s0 + x2 * (s1 + x2 * s2));
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
  const Real signal = SingleExp2(-78.84375f * SingleLog2OfOneLess(below));
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
