#pragma once

#include "curves/SoftKnee.h"
#include "curves/Three.h"

/// Ratio by which the soft knee scales one channel on its own.
inline float SoftKneeRatio(float channel, float knee, float sourcePeak, float destinationPeak) {
  if (!(channel > knee)) return 1.0f;
  return SoftKnee(channel, knee, sourcePeak, destinationPeak) / channel;
}

/// Share of the way to its largest channel that a scaled channel may go before it passes what the
/// soft knee gives that channel on its own.
inline float ShareOfExcess(float perChannel, float scaled, float excess) {
  if (!(excess > 0.0f)) return 1.0f;
  return (perChannel - scaled + 1e-15f) / (excess + 1e-15f);
}

/// Hue-preserving desaturation of one pixel's three colour channels, in place. The pixel is scaled
/// as a whole by the smallest ratio that the soft knee gives a channel, then moved towards its
/// largest channel by what the per-channel curves allow, the less the more colour is preserved
/// (0 to 1). Peaks and knee in linear light, the unit of the pixel.
inline void HuePreservingDesaturation(float* pixel, float gain, float sourcePeak, float knee,
                                      float destinationPeak, float colorPreservation) {
  const float c0 = pixel[0] * gain;
  const float c1 = pixel[1] * gain;
  const float c2 = pixel[2] * gain;
  pixel[0] = c0;
  pixel[1] = c1;
  pixel[2] = c2;

  const float k = knee < 1e-15f ? 1e-15f : knee;
  const float largest = LargestOfThree(c0, c1, c2);
  if (!(sourcePeak > destinationPeak && sourcePeak > k && largest > k)) return;

  const float r0 = SoftKneeRatio(c0, k, sourcePeak, destinationPeak);
  const float r1 = SoftKneeRatio(c1, k, sourcePeak, destinationPeak);
  const float r2 = SoftKneeRatio(c2, k, sourcePeak, destinationPeak);
  const float ratio = ClampToUnit(SmallestOfThree(r0, r1, r2));

  const float u0 = ratio * c0;
  const float u1 = ratio * c1;
  const float u2 = ratio * c2;
  const float top = LargestOfThree(u0, u1, u2);
  const float e0 = top - u0;
  const float e1 = top - u1;
  const float e2 = top - u2;

  const float share =
      ClampToUnit(SmallestOfThree(ShareOfExcess(r0 * c0, u0, e0), ShareOfExcess(r1 * c1, u1, e1),
                                  ShareOfExcess(r2 * c2, u2, e2))) *
      ClampToUnit(1.0f - colorPreservation);
  pixel[0] = u0 + share * e0;
  pixel[1] = u1 + share * e1;
  pixel[2] = u2 + share * e2;
}
