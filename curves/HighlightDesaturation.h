#pragma once

#include "curves/Three.h"
#include "curves/math.h"

// Desaturation of highlights: above the threshold a pixel moves towards its luminance, the more the
// nearer its largest channel is to the peak and the less colour is to be preserved (0 to 1).

#define QUILLON_HIGHLIGHT_EXPONENT 0.25f

/// How far the largest channel is on the way from the threshold (0) to the peak (1); anything for
/// channels that do not lie above the threshold. Negative when the threshold lies above the peak.
QUILLON_CURVE Real HighlightPlace(Real largest, float threshold, float peak) {
  const Real excess = largest > threshold ? largest - threshold : Uniform(1.0f, largest);
  return excess / (peak - threshold);
}

/// Moves one pixel's three colour channels in place if its largest lies above the threshold.
/// `strength` is the power of its place. Weights are the luminance weights of the third, second and
/// first channel (red, green, blue).
QUILLON_CURVE void MoveToLuminance(Real* pixel, Real largest, Real strength, float threshold,
                                   float colorPreservation, float weightRed, float weightGreen,
                                   float weightBlue) {
  const QUILLON_MASK isAbove = largest > threshold;
  const Real luminance = weightRed * pixel[2] + weightGreen * pixel[1] + weightBlue * pixel[0];
  const Real share = ClampToUnit(1.0f - strength * (1.0f - colorPreservation));
  pixel[0] = isAbove ? (pixel[0] - luminance) * share + luminance : pixel[0];
  pixel[1] = isAbove ? (pixel[1] - luminance) * share + luminance : pixel[1];
  pixel[2] = isAbove ? (pixel[2] - luminance) * share + luminance : pixel[2];
}

/// One pixel's three colour channels in place, multiplied by the gain first. A threshold above the
/// peak gives NaN above it, which passes.
QUILLON_CURVE void DesaturateHighlight(Real* pixel, float gain, float threshold, float peak,
                                       float colorPreservation, float weightRed, float weightGreen,
                                       float weightBlue) {
  pixel[0] = pixel[0] * gain;
  pixel[1] = pixel[1] * gain;
  pixel[2] = pixel[2] * gain;
  const Real largest = LargestOfThree(pixel[0], pixel[1], pixel[2]);
  if (!AnyOf(largest > threshold)) return;
  const Real strength = Power(HighlightPlace(largest, threshold, peak), QUILLON_HIGHLIGHT_EXPONENT);
  MoveToLuminance(pixel, largest, strength, threshold, colorPreservation, weightRed, weightGreen,
                  weightBlue);
}
