#pragma once

#include "curves/Three.h"

/// One channel's distance from the largest, clamped to the limit, then compressed above the
/// threshold so that the limit lands on 1.
QUILLON_CURVE Real CompressGamutDistance(Real distance, float limit, float threshold,
                                         float oneLessThreshold) {
  const Real d = limit < distance ? Uniform(limit, distance) : distance;
  const QUILLON_MASK isFar = d > threshold;
  if (!(limit > 1.0f && AnyOf(isFar))) return d;
  const float k = (limit - threshold) * oneLessThreshold / (limit - 1.0f);
  const Real x = d - threshold;
  return isFar ? (d - x) + x * k / (x + k) : d;
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
  // 1 - 0.98 and 1 - 0.92 as single precision has them.
  const Real d0 = CompressGamutDistance((largest - c0) * inverse, limit, 0.98f, 1.0f - 0.98f);
  const Real d1 = CompressGamutDistance((largest - c1) * inverse, limit, 0.92f, 1.0f - 0.92f);
  const Real d2 = CompressGamutDistance((largest - c2) * inverse, limit, 0.98f, 1.0f - 0.98f);
  pixel[0] = isBlack ? c0 : largest - d0 * largest;
  pixel[1] = isBlack ? c1 : largest - d1 * largest;
  pixel[2] = isBlack ? c2 : largest - d2 * largest;
}
