#pragma once

#include "curves/Three.h"
#include "curves/math.h"

// Report ITU-R BT.2446-1, clause 4: method A.

// Deliberate: 0.4166 and 2.4 are not reciprocal.
#define QUILLON_BT2446A_ENCODING 0.4166f
#define QUILLON_BT2446A_DECODING 2.4f

/// What of a channel the encoding power is taken of: 0 in place of negative light, but for minus
/// infinity, whose power is infinite. The power of other negative light is not a number, which the
/// curve maps to 0 as well.
QUILLON_CURVE Real Bt2446AEncodable(Real value) {
  const QUILLON_MASK hasPower = (value >= 0.0f) | (value == -QUILLON_INFINITY);
  return hasPower ? value : Uniform(0.0f, value);
}

/// From an encoded channel to what the logarithm is taken of.
QUILLON_CURVE Real Bt2446ALoggable(Real encoded, float rhoHdr) {
  return (rhoHdr - 1.0f) * encoded + 1.0f;
}

/// The curve proper, from the logarithm to an encoded result. 0 for a channel whose encoded value
/// is not above 0.
QUILLON_CURVE Real Bt2446ACurve(Real encoded, Real logarithm, float rhoHdr) {
  const Real e = logarithm / Logarithm(rhoHdr);
  Real mapped = e <= 1.0f ? 0.5f * e + 0.5f : Uniform(1.0f, e);
  mapped = e < 0.9909f ? 2.7811f * e - 1.151f * e * e - 0.6302f : mapped;
  mapped = e < 0.7399f ? 1.077f * e : mapped;
  mapped = e < 0.0f ? Uniform(0.0f, e) : mapped;
  return encoded > 0.0f ? mapped : Uniform(0.0f, e);
}

/// From the curve's encoded result to what the decoding power is taken of.
QUILLON_CURVE Real Bt2446ADecodable(Real mapped, float rhoSdr) {
  return (PowerOfBase(rhoSdr, mapped) - 1.0f) / (rhoSdr - 1.0f);
}

/// One channel through the luminance curve, linear to linear, both relative to their peaks. Below 0
/// it gives 0.
QUILLON_CURVE Real Bt2446AChannel(Real value, float rhoHdr, float rhoSdr) {
  const Real encoded = Power(Bt2446AEncodable(value), QUILLON_BT2446A_ENCODING);
  const Real logarithm = Logarithm(Bt2446ALoggable(encoded, rhoHdr));
  const Real mapped = Bt2446ACurve(encoded, logarithm, rhoHdr);
  return Power(Bt2446ADecodable(mapped, rhoSdr), QUILLON_BT2446A_DECODING);
}

/// The curve's results y for the channels of `pixel`, blended with a scaling of the pixel as a
/// whole by its largest channel, as colour preservation (0 to 1) says. In place.
QUILLON_CURVE void BlendBt2446A(Real* pixel, const Real* y, float outputScale,
                                float colorPreservation) {
  const Real largest = LargestOfThree(pixel[0], pixel[1], pixel[2]);
  const Real top = ClampToUnit(LargestOfThree(y[0], y[1], y[2]));
  const Real k = colorPreservation * top / (largest < 1e-15f ? Uniform(1e-15f, largest) : largest);
  const float own = 1.0f - colorPreservation;
  pixel[0] = (own * y[0] + k * pixel[0]) * outputScale;
  pixel[1] = (own * y[1] + k * pixel[1]) * outputScale;
  pixel[2] = (own * y[2] + k * pixel[2]) * outputScale;
}

/// One pixel's three colour channels in place: the curve on each channel, then the blend.
QUILLON_CURVE void ToneMapBt2446A(Real* pixel, float gain, float rhoHdr, float rhoSdr,
                                  float inputScale, float outputScale, float colorPreservation) {
  const float scale = inputScale * gain;
  Real y[3];
  for (int channel = 0; channel < 3; ++channel) {
    pixel[channel] = pixel[channel] * scale;
    y[channel] = Bt2446AChannel(pixel[channel], rhoHdr, rhoSdr);
  }
  BlendBt2446A(pixel, y, outputScale, colorPreservation);
}
