#pragma once

#include <cmath>

// Hybrid Log-Gamma, ITU-R BT.2100-2, table 5. Display-referred: linear values are the light of a
// display in nits, with the OOTF applied on luminance, never channel by channel.

/// OETF: scene light of one channel, 0 to 1, to a signal, 0 to 1. Goes on above 1, odd about 0.
inline double HlgOetf(double scene) {
  const double a = 0.17883277;
  const double b = 0.28466892;
  const double c = 0.55991073;
  const double light = fabs(scene);
  const double signal = light <= 1.0 / 12.0 ? sqrt(3.0 * light) : a * log(12.0 * light - b) + c;
  return copysign(signal, scene);
}

/// Inverse OETF: a signal to scene light.
inline double HlgInverseOetf(double signal) {
  const double a = 0.17883277;
  const double b = 0.28466892;
  const double c = 0.55991073;
  const double value = fabs(signal);
  const double light = value <= 0.5 ? value * value / 3.0 : (exp((value - c) / a) + b) / 12.0;
  return copysign(light, signal);
}

/// System gamma of a display with this nominal peak in nits: 1.2 at 1000 (BT.2100-2, note 5f).
/// Positive, and the OOTF invertible, from 2 nits.
inline double HlgSystemGamma(double peakNits) { return 1.2 + 0.42 * log10(peakNits / 1000.0); }

/// What the OOTF and its inverse multiply each channel with: |luminance| to a power. Black stays
/// black whatever the power's sign.
inline double HlgLuminanceFactor(double luminance, double exponent) {
  return luminance == 0.0 ? 0.0 : pow(fabs(luminance), exponent);
}

/// EOTF: one pixel's signals (red, green, blue) to nits on a display of this peak, in place. The
/// weights give the luminance of the pixel's primaries and add up to 1. For out-of-gamut light of
/// negative luminance the OOTF goes by its magnitude.
inline void DecodeHlg(double* rgb, const double* weights, double peakNits, double gamma) {
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
inline void EncodeHlg(double* rgb, const double* weights, double peakNits, double gamma) {
  const double red = rgb[0] / peakNits;
  const double green = rgb[1] / peakNits;
  const double blue = rgb[2] / peakNits;
  const double luminance = weights[0] * red + weights[1] * green + weights[2] * blue;
  const double factor = HlgLuminanceFactor(luminance, (1.0 - gamma) / gamma);
  rgb[0] = HlgOetf(factor * red);
  rgb[1] = HlgOetf(factor * green);
  rgb[2] = HlgOetf(factor * blue);
}
