#pragma once

#include "curves/Three.h"

// Report ITU-R BT.2390-11, 5.4.1: the EETF, in PQ code values.

/// What both ways of applying the EETF read.
typedef struct EetfParams {
  float sourceBlack;  // PQ
  float sourceRange;  // PQ
  float kneeStart;    // KS, of the normalised signal
  float minLum;       // of the normalised signal
  float maxLum;
} EetfParams;

/// The parameters from black and peak of source and destination, PQ code values. Nothing is
/// guarded: a source without range gives what the divisions give.
QUILLON_FUNCTION EetfParams MakeEetfParams(float sourceBlack, float sourcePeak,
                                           float destinationBlack, float destinationPeak) {
  EetfParams p;
  p.sourceBlack = sourceBlack;
  p.sourceRange = sourcePeak - sourceBlack;
  p.minLum = (destinationBlack - sourceBlack) / p.sourceRange;
  p.maxLum = (destinationPeak - sourceBlack) / p.sourceRange;
  p.kneeStart = 1.5f * p.maxLum - 0.5f;
  return p;
}

/// One value through the EETF.
///
/// Deliberate: above the knee a cubic takes the place of the report's Hermite spline.
QUILLON_CURVE Real Eetf(Real x, EetfParams p) {
  const Real signal = ClampToUnit((x - p.sourceBlack) / p.sourceRange);
  const Real under = signal - 1.0f;
  const float toPeak = p.maxLum - 1.0f;
  const Real rolled = under * under * under / (toPeak * toPeak) * 0.1481f + p.maxLum;
  const Real e = signal > p.kneeStart ? rolled : signal;
  const QUILLON_WIDE wide = Widen(e);
  const QUILLON_WIDE rest = 1.0 - wide;
  const QUILLON_WIDE lifted = rest * rest * (rest * rest) * (double)p.minLum + wide;
  return Narrow(lifted, x) * p.sourceRange + p.sourceBlack;
}

/// One channel on its own. At or below 1e-15 it is left as it is, not lifted to black.
QUILLON_CURVE Real EetfOfChannel(Real pq, EetfParams p) {
  const Real mapped = Eetf(pq, p);
  const Real atMostOne = mapped > 1.0f ? Uniform(1.0f, pq) : mapped;
  return pq > 1e-15f ? atMostOne : pq;
}

/// Each channel on its own.
QUILLON_CURVE void EetfByChannel(Real* pq, EetfParams p) {
  for (int channel = 0; channel < 3; ++channel) pq[channel] = EetfOfChannel(pq[channel], p);
}

/// Destination black for a channel at or below source black.
QUILLON_CURVE Real LiftSourceBlack(Real pq, EetfParams p) {
  const float black = p.minLum * p.sourceRange + p.sourceBlack;
  return pq <= p.sourceBlack ? Uniform(black, pq) : pq;
}

/// What the EETF scales a pixel by whose largest channel this is.
QUILLON_CURVE Real EetfRatio(Real largest, EetfParams p) {
  const Real ratio = Eetf(largest, p) / largest;
  return ClampToUnit(largest > 1e-15f ? ratio : Uniform(1.0f, largest));
}

/// The ratio that the largest channel is mapped by, for all three. Channels at or below source
/// black become destination black first.
QUILLON_CURVE void EetfMaxRGB(Real* pq, EetfParams p) {
  for (int channel = 0; channel < 3; ++channel) pq[channel] = LiftSourceBlack(pq[channel], p);
  const Real ratio = EetfRatio(LargestOfThree(pq[0], pq[1], pq[2]), p);
  for (int channel = 0; channel < 3; ++channel) pq[channel] = pq[channel] * ratio;
}
