#pragma once

#include "curves/math64.h"

// Hybrid Log-Gamma, ITU-R BT.2100-2, table 5. Display-referred: linear values are the light of a
// display in nits, with the OOTF applied on luminance, never channel by channel.

/// OETF: scene light of one channel, 0 to 1, to a signal, 0 to 1. Goes on above 1, odd about 0.
QUILLON_FUNCTION double HlgOetf(double scene) {
  const double a = 0.17883277;
  const double b = 0.28466892;
  const double c = 0.55991073;
  const double light = Magnitude64(scene);
  const double signal =
      light <= 1.0 / 12.0 ? sqrt(3.0 * light) : a * Logarithm64(12.0 * light - b) + c;
  return WithSignOf(scene, signal);
}

/// Inverse OETF: a signal to scene light.
QUILLON_FUNCTION double HlgInverseOetf(double signal) {
  const double a = 0.17883277;
  const double b = 0.28466892;
  const double c = 0.55991073;
  const double value = Magnitude64(signal);
  const double light =
      value <= 0.5 ? value * value / 3.0 : (Exponential64((value - c) / a) + b) / 12.0;
  return WithSignOf(signal, light);
}

/// System gamma of a display with this nominal peak in nits: 1.2 at 1000 (BT.2100-2, note 5f).
/// Positive, and the OOTF invertible, from 2 nits.
QUILLON_FUNCTION double HlgSystemGamma(double peakNits) {
  return 1.2 + 0.42 * Logarithm64(peakNits / 1000.0) * 0.43429448190325176;
}

/// What the OOTF and its inverse multiply each channel with: |luminance| to a power. Black stays
/// black whatever the power's sign.
QUILLON_FUNCTION double HlgLuminanceFactor(double luminance, double exponent) {
  return luminance == 0.0 ? 0.0 : Power64(Magnitude64(luminance), exponent);
}

/// EOTF: one pixel's signals (red, green, blue) to nits on a display of this peak, in place. The
/// weights give the luminance of the pixel's primaries and add up to 1. For out-of-gamut light of
/// negative luminance the OOTF goes by its magnitude.
QUILLON_FUNCTION void DecodeHlg(double* rgb, const double* weights, double peakNits, double gamma) {
  const double red = HlgInverseOetf(rgb[0]);
  const double green = HlgInverseOetf(rgb[1]);
  const double blue = HlgInverseOetf(rgb[2]);
  const double luminance = weights[0] * red + weights[1] * green + weights[2] * blue;
  const double factor = peakNits * HlgLuminanceFactor(luminance, gamma - 1.0);
  rgb[0] = factor * red;
  rgb[1] = factor * green;
  rgb[2] = factor * blue;
}

/// Inverse EOTF: nits to signals, in place.
QUILLON_FUNCTION void EncodeHlg(double* rgb, const double* weights, double peakNits, double gamma) {
  const double red = rgb[0] / peakNits;
  const double green = rgb[1] / peakNits;
  const double blue = rgb[2] / peakNits;
  const double luminance = weights[0] * red + weights[1] * green + weights[2] * blue;
  const double factor = HlgLuminanceFactor(luminance, (1.0 - gamma) / gamma);
  rgb[0] = HlgOetf(factor * red);
  rgb[1] = HlgOetf(factor * green);
  rgb[2] = HlgOetf(factor * blue);
}
