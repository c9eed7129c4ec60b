#pragma once

#include "curves/Three.h"
#include "curves/math.h"

/// Desaturation of highlights, one pixel's three colour channels in place. Multiplies by the gain;
/// above the threshold the pixel then moves towards its luminance, the more the nearer its largest
/// channel is to the peak and the less colour is to be preserved (0 to 1). Weights are the
/// luminance weights of the third, second and first channel (red, green, blue). A threshold above
/// the peak gives NaN above it, which passes.
QUILLON_CURVE void DesaturateHighlight(Real* pixel, float gain, float threshold, float peak,
                                       float colorPreservation, float weightRed, float weightGreen,
                                       float weightBlue) {
  const Real c0 = pixel[0] * gain;
  const Real c1 = pixel[1] * gain;
  const Real c2 = pixel[2] * gain;
  pixel[0] = c0;
  pixel[1] = c1;
  pixel[2] = c2;
  const Real largest = LargestOfThree(c0, c1, c2);
  const QUILLON_MASK isAbove = largest > threshold;
  if (!AnyOf(isAbove)) return;

  const Real luminance = weightRed * c2 + weightGreen * c1 + weightBlue * c0;
  const Real excess = isAbove ? largest - threshold : Uniform(1.0f, largest);
  const Real place = Power(excess / (peak - threshold), 0.25f);
  const Real share = ClampToUnit(1.0f - place * (1.0f - colorPreservation));
  pixel[0] = isAbove ? (c0 - luminance) * share + luminance : c0;
  pixel[1] = isAbove ? (c1 - luminance) * share + luminance : c1;
  pixel[2] = isAbove ? (c2 - luminance) * share + luminance : c2;
}
