#pragma once

#include "curves/Three.h"

/// One channel's distance from the largest, clamped to the limit, then compressed above the
/// threshold so that the limit lands on 1.
inline float CompressGamutDistance(float distance, float limit, float threshold,
                                   float oneLessThreshold) {
  float d = limit < distance ? limit : distance;
  if (limit > 1.0f && d > threshold) {
    const float k = (limit - threshold) * oneLessThreshold / (limit - 1.0f);
    const float x = d - threshold;
    d = (d - x) + x * k / (x + k);
  }
  return d;
}

/// Gamut compression of one pixel's three colour channels in place: channels far below the largest
/// are pulled towards it, by a Reinhard curve over their relative distance. `limit` is the largest
/// distance that is told apart.
inline void CompressGamutReinhard(float* pixel, float limit) {
  const float c0 = pixel[0];
  const float c1 = pixel[1];
  const float c2 = pixel[2];
  const float largest = LargestOfThree(c0, c1, c2);
  if (largest <= 1e-15f) return;
  const float inverse = 1.0f / largest;
  // 1 - 0.98 and 1 - 0.92 as single precision has them.
  const float d0 = CompressGamutDistance((largest - c0) * inverse, limit, 0.98f, 1.0f - 0.98f);
  const float d1 = CompressGamutDistance((largest - c1) * inverse, limit, 0.92f, 1.0f - 0.92f);
  const float d2 = CompressGamutDistance((largest - c2) * inverse, limit, 0.98f, 1.0f - 0.98f);
  pixel[0] = largest - d0 * largest;
  pixel[1] = largest - d1 * largest;
  pixel[2] = largest - d2 * largest;
}
