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

/// Each channel on its own. A channel at or below 1e-15 is left as it is, not lifted to black.
QUILLON_FUNCTION void EetfByChannel(float* pq, Bt2390Params p) {
  for (int channel = 0; channel < 3; ++channel) {
    if (!(pq[channel] > 1e-15f)) continue;
    const float mapped = Eetf(pq[channel], p);
    pq[channel] = mapped > 1.0f ? 1.0f : mapped;
  }
}

/// The ratio that the largest channel is mapped by, for all three. Channels at or below source
/// black become destination black first.
QUILLON_FUNCTION void EetfMaxRGB(float* pq, Bt2390Params p) {
  const float black = p.minLum * p.sourceRange + p.sourceBlack;
  for (int channel = 0; channel < 3; ++channel) {
    if (pq[channel] <= p.sourceBlack) pq[channel] = black;
  }
  const float largest = LargestOfThree(pq[0], pq[1], pq[2]);
  const float ratio = ClampToUnit(largest > 1e-15f ? Eetf(largest, p) / largest : 1.0f);
  pq[0] *= ratio;
  pq[1] *= ratio;
  pq[2] *= ratio;
}
