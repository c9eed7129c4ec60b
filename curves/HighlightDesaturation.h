#pragma once

#include <cmath>

#include "curves/Three.h"

/// Desaturation of highlights, one pixel's three colour channels in place. Multiplies by the gain;
/// above the threshold the pixel then moves towards its luminance, the more the nearer its largest
/// channel is to the peak and the less colour is to be preserved (0 to 1). Weights are the
/// luminance weights of the third, second and first channel (red, green, blue). A threshold above
/// the peak gives NaN above it, which passes.
inline void DesaturateHighlight(float* pixel, float gain, float threshold, float peak,
                                float colorPreservation, float weightRed, float weightGreen,
                                float weightBlue) {
  pixel[0] *= gain;
  pixel[1] *= gain;
  pixel[2] *= gain;
  const float largest = LargestOfThree(pixel[0], pixel[1], pixel[2]);
  if (!(largest > threshold)) return;
  const float luminance = weightRed * pixel[2] + weightGreen * pixel[1] + weightBlue * pixel[0];
  const float place = powf((largest - threshold) / (peak - threshold), 0.25f);
  const float share = ClampToUnit(1.0f - place * (1.0f - colorPreservation));
  pixel[0] = (pixel[0] - luminance) * share + luminance;
  pixel[1] = (pixel[1] - luminance) * share + luminance;
  pixel[2] = (pixel[2] - luminance) * share + luminance;
}
