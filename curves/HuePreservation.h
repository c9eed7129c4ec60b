#pragma once

#include "curves/SoftKnee.h"
#include "curves/Three.h"

/// Ratio by which the soft knee scales one channel on its own.
QUILLON_CURVE Real SoftKneeRatio(Real channel, float knee, float sourcePeak,
                                 float destinationPeak) {
  const Real ratio = SoftKnee(channel, knee, sourcePeak, destinationPeak) / channel;
  return channel > knee ? ratio : Uniform(1.0f, channel);
}

/// Share of the way to its largest channel that a scaled channel may go before it passes what the
/// soft knee gives that channel on its own.
QUILLON_CURVE Real ShareOfExcess(Real perChannel, Real scaled, Real excess) {
  const Real share = (perChannel - scaled + 1e-15f) / (excess + 1e-15f);
  return excess > 0.0f ? share : Uniform(1.0f, excess);
}

/// Hue-preserving desaturation of one pixel's three colour channels, in place. The pixel is scaled
/// as a whole by the smallest ratio that the soft knee gives a channel, then moved towards its
/// largest channel by what the per-channel curves allow, the less the more colour is preserved
/// (0 to 1). Peaks and knee in linear light, the unit of the pixel.
QUILLON_CURVE void HuePreservingDesaturation(Real* pixel, float gain, float sourcePeak, float knee,
                                             float destinationPeak, float colorPreservation) {
  const Real c0 = pixel[0] * gain;
  const Real c1 = pixel[1] * gain;
  const Real c2 = pixel[2] * gain;
  pixel[0] = c0;
  pixel[1] = c1;
  pixel[2] = c2;

  const float k = knee < 1e-15f ? 1e-15f : knee;
  const QUILLON_MASK isAbove = LargestOfThree(c0, c1, c2) > k;
  if (!(sourcePeak > destinationPeak && sourcePeak > k && AnyOf(isAbove))) return;

  const Real r0 = SoftKneeRatio(c0, k, sourcePeak, destinationPeak);
  const Real r1 = SoftKneeRatio(c1, k, sourcePeak, destinationPeak);
  const Real r2 = SoftKneeRatio(c2, k, sourcePeak, destinationPeak);
  const Real ratio = ClampToUnit(SmallestOfThree(r0, r1, r2));

  const Real u0 = ratio * c0;
  const Real u1 = ratio * c1;
  const Real u2 = ratio * c2;
  const Real top = LargestOfThree(u0, u1, u2);
  const Real e0 = top - u0;
  const Real e1 = top - u1;
  const Real e2 = top - u2;

  const Real share =
      ClampToUnit(SmallestOfThree(ShareOfExcess(r0 * c0, u0, e0), ShareOfExcess(r1 * c1, u1, e1),
                                  ShareOfExcess(r2 * c2, u2, e2))) *
      ClampToUnit(1.0f - colorPreservation);
  pixel[0] = isAbove ? u0 + share * e0 : c0;
  pixel[1] = isAbove ? u1 + share * e1 : c1;
  pixel[2] = isAbove ? u2 + share * e2 : c2;
}
