#pragma once

#include "curves/Three.h"
#include "curves/math.h"

// Report ITU-R BT.2446-1, clause 4: method A.

/// The curve proper, from an encoded value to an encoded value. 0 for what is not above 0.
QUILLON_CURVE Real Bt2446AEncoded(Real encoded, float rhoHdr) {
  const Real e = Logarithm((rhoHdr - 1.0f) * encoded + 1.0f) / Logarithm(rhoHdr);
  Real mapped = e <= 1.0f ? 0.5f * e + 0.5f : Uniform(1.0f, e);
  mapped = e < 0.9909f ? 2.7811f * e - 1.151f * e * e - 0.6302f : mapped;
  mapped = e < 0.7399f ? 1.077f * e : mapped;
  mapped = e < 0.0f ? Uniform(0.0f, e) : mapped;
  return encoded > 0.0f ? mapped : Uniform(0.0f, e);
}

/// One channel through the luminance curve, linear to linear, both relative to their peaks. Below 0
/// it gives 0, but for minus infinity, whose power is infinite.
///
/// Deliberate: 0.4166 and 2.4 are not reciprocal.
QUILLON_CURVE Real Bt2446AChannel(Real value, float rhoHdr, float rhoSdr) {
  const QUILLON_MASK hasPower = (value >= 0.0f) | (value == -QUILLON_INFINITY);
  const Real encoded = Power(hasPower ? value : Uniform(0.0f, value), 0.4166f);
  const Real mapped = Bt2446AEncoded(encoded, rhoHdr);
  return Power((PowerOfBase(rhoSdr, mapped) - 1.0f) / (rhoSdr - 1.0f), 2.4f);
}

/// One pixel's three colour channels in place: the curve on each channel, blended with a scaling of
/// the pixel as a whole by its largest channel, as colour preservation (0 to 1) says.
QUILLON_CURVE void ToneMapBt2446A(Real* pixel, float gain, float rhoHdr, float rhoSdr,
                                  float inputScale, float outputScale, float colorPreservation) {
  const float scale = inputScale * gain;
  const Real c0 = pixel[0] * scale;
  const Real c1 = pixel[1] * scale;
  const Real c2 = pixel[2] * scale;
  const Real largest = LargestOfThree(c0, c1, c2);
  const Real y0 = Bt2446AChannel(c0, rhoHdr, rhoSdr);
  const Real y1 = Bt2446AChannel(c1, rhoHdr, rhoSdr);
  const Real y2 = Bt2446AChannel(c2, rhoHdr, rhoSdr);
  const Real top = ClampToUnit(LargestOfThree(y0, y1, y2));
  const Real k = colorPreservation * top / (largest < 1e-15f ? Uniform(1e-15f, largest) : largest);
  const float own = 1.0f - colorPreservation;
  pixel[0] = (own * y0 + k * c0) * outputScale;
  pixel[1] = (own * y1 + k * c1) * outputScale;
  pixel[2] = (own * y2 + k * c2) * outputScale;
}
