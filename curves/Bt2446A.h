#pragma once

#include <cmath>

#include "curves/Three.h"

// Report ITU-R BT.2446-1, clause 4: method A.

/// One channel through the luminance curve, linear to linear, both relative to their peaks. Below 0
/// it gives 0.
///
/// Deliberate: 0.4166 and 2.4 are not reciprocal.
inline float Bt2446AChannel(float value, float rhoHdr, float rhoSdr) {
  const float encoded = powf(value, 0.4166f);
  float mapped = 0.0f;
  if (encoded > 0.0f) {
    const float e = logf((rhoHdr - 1.0f) * encoded + 1.0f) / logf(rhoHdr);
    if (e < 0.0f) {
      mapped = 0.0f;
    } else if (e < 0.7399f) {
      mapped = 1.077f * e;
    } else if (e < 0.9909f) {
      mapped = 2.7811f * e - 1.151f * e * e - 0.6302f;
    } else if (e <= 1.0f) {
      mapped = 0.5f * e + 0.5f;
    } else {
      mapped = 1.0f;
    }
  }
  return powf((powf(rhoSdr, mapped) - 1.0f) / (rhoSdr - 1.0f), 2.4f);
}

/// One pixel's three colour channels in place: the curve on each channel, blended with a scaling of
/// the pixel as a whole by its largest channel, as colour preservation (0 to 1) says.
inline void ToneMapBt2446A(float* pixel, float gain, float rhoHdr, float rhoSdr, float inputScale,
                           float outputScale, float colorPreservation) {
  const float scale = inputScale * gain;
  const float c0 = pixel[0] * scale;
  const float c1 = pixel[1] * scale;
  const float c2 = pixel[2] * scale;
  const float largest = LargestOfThree(c0, c1, c2);
  const float y0 = Bt2446AChannel(c0, rhoHdr, rhoSdr);
  const float y1 = Bt2446AChannel(c1, rhoHdr, rhoSdr);
  const float y2 = Bt2446AChannel(c2, rhoHdr, rhoSdr);
  const float top = ClampToUnit(LargestOfThree(y0, y1, y2));
  const float k = colorPreservation * top / (largest < 1e-15f ? 1e-15f : largest);
  const float own = 1.0f - colorPreservation;
  pixel[0] = (own * y0 + k * c0) * outputScale;
  pixel[1] = (own * y1 + k * c1) * outputScale;
  pixel[2] = (own * y2 + k * c2) * outputScale;
}
