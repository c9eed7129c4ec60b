#pragma once

#include "curves/Three.h"

/// One channel's distance from the largest, compressed above the threshold so that the limit, which
/// is above 1, lands on 1.
QUILLON_CURVE Real CompressGamutDistance(Real distance, float limit, float threshold,
                                         float oneLessThreshold) {
  const float k = (limit - threshold) * oneLessThreshold / (limit - 1.0f);
  const Real x = distance - threshold;
  return distance > threshold ? (distance - x) + x * k / (x + k) : distance;
}

/// Gamut compression of one pixel's three colour channels in place: channels far below the largest
/// are pulled towards it, by a Reinhard curve over their relative distance. `limit` is the largest
/// distance that is told apart.
QUILLON_CURVE void CompressGamutReinhard(Real* pixel, float limit) {
  const Real c0 = pixel[0];
  const Real c1 = pixel[1];
  const Real c2 = pixel[2];
  const Real largest = LargestOfThree(c0, c1, c2);
  const QUILLON_MASK isBlack = largest <= 1e-15f;
  if (AllOf(isBlack)) return;
  const Real inverse = 1.0f / largest;
  Real d0 = (largest - c0) * inverse;
  Real d1 = (largest - c1) * inverse;
  Real d2 = (largest - c2) * inverse;
  d0 = limit < d0 ? Uniform(limit, d0) : d0;
  d1 = limit < d1 ? Uniform(limit, d1) : d1;
  d2 = limit < d2 ? Uniform(limit, d2) : d2;
  const QUILLON_MASK isNear = (d0 <= 0.98f) & (d1 <= 0.92f) & (d2 <= 0.98f);
  if (limit > 1.0f && !IsWorthSkipping(isNear)) {
    // Deliberate: 1 - 0.98 and 1 - 0.92 as single precision has them.
    d0 = CompressGamutDistance(d0, limit, 0.98f, 1.0f - 0.98f);
    d1 = CompressGamutDistance(d1, limit, 0.92f, 1.0f - 0.92f);
    d2 = CompressGamutDistance(d2, limit, 0.98f, 1.0f - 0.98f);
  }
  pixel[0] = isBlack ? c0 : largest - d0 * largest;
  pixel[1] = isBlack ? c1 : largest - d1 * largest;
  pixel[2] = isBlack ? c2 : largest - d2 * largest;
}
