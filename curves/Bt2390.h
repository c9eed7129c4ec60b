#pragma once

#include "curves/Three.h"

// Report ITU-R BT.2390-11, 5.4.1: the EETF, in PQ code values.

/// What both ways of applying the EETF read.
typedef struct Bt2390Params {
  float sourceBlack;  // PQ
  float sourceRange;  // PQ
  float kneeStart;    // KS, of the normalised signal
  float minLum;       // of the normalised signal
  float maxLum;
} Bt2390Params;

/// One value through the EETF.
///
/// Deliberate: above the knee a cubic takes the place of the report's Hermite spline.
QUILLON_FUNCTION float Eetf(float x, Bt2390Params p) {
  float e = ClampToUnit((x - p.sourceBlack) / p.sourceRange);
  if (e > p.kneeStart) {
    const float under = e - 1.0f;
    const float toPeak = p.maxLum - 1.0f;
    e = under * under * under / (toPeak * toPeak) * 0.1481f + p.maxLum;
  }
  const double rest = 1.0f - e;
  const double lifted = rest * rest * (rest * rest) * (double)p.minLum + (double)e;
  return (float)lifted * p.sourceRange + p.sourceBlack;
}

/// One channel on its own. At or below 1e-15 it is left as it is, not lifted to black.
QUILLON_FUNCTION float EetfOfChannel(float pq, Bt2390Params p) {
  if (!(pq > 1e-15f)) return pq;
  const float mapped = Eetf(pq, p);
  return mapped > 1.0f ? 1.0f : mapped;
}

/// Each channel on its own.
QUILLON_FUNCTION void EetfByChannel(float* pq, Bt2390Params p) {
  for (int channel = 0; channel < 3; ++channel) pq[channel] = EetfOfChannel(pq[channel], p);
}

/// Destination black for a channel at or below source black.
QUILLON_FUNCTION float LiftSourceBlack(float pq, Bt2390Params p) {
  return pq <= p.sourceBlack ? p.minLum * p.sourceRange + p.sourceBlack : pq;
}

/// What the EETF scales a pixel by whose largest channel this is.
QUILLON_FUNCTION float EetfRatio(float largest, Bt2390Params p) {
  return ClampToUnit(largest > 1e-15f ? Eetf(largest, p) / largest : 1.0f);
}

/// The ratio that the largest channel is mapped by, for all three. Channels at or below source
/// black become destination black first.
QUILLON_FUNCTION void EetfMaxRGB(float* pq, Bt2390Params p) {
  for (int channel = 0; channel < 3; ++channel) pq[channel] = LiftSourceBlack(pq[channel], p);
  const float ratio = EetfRatio(LargestOfThree(pq[0], pq[1], pq[2]), p);
  for (int channel = 0; channel < 3; ++channel) pq[channel] *= ratio;
}
