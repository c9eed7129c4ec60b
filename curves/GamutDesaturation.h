#pragma once

#include "curves/Three.h"

/// Gamut compression of one pixel's three colour channels (blue, green, red) in place: when the
/// smallest lies below 4 % of the largest, the pixel moves along the line to a grey anchor until
/// its smallest channel stands at a soft floor, which reaches 0 at -5. Weights are the luminance
/// weights of red, green and blue.
QUILLON_CURVE void CompressGamutDesaturation(Real* pixel, float weightRed, float weightGreen,
                                             float weightBlue) {
  const Real c0 = pixel[0];
  const Real c1 = pixel[1];
  const Real c2 = pixel[2];
  const Real largest = LargestOfThree(c0, c1, c2);
  const Real positive = largest > 0.0f ? largest : Uniform(0.0f, largest);
  const Real scaled = positive * (1.0f - 0.96f);
  const Real threshold = scaled > 1e-15f ? scaled : Uniform(1e-15f, scaled);
  const Real smallest = SmallestOfThree(c0, c1, c2);
  const QUILLON_MASK isInside = smallest >= threshold;
  if (IsWorthSkipping(isInside)) return;

  // Deliberate: red counts with both the red and the blue weight, blue not at all.
  const Real luminance = weightGreen * c1 + weightRed * c2 + weightBlue * c2;
  const Real grey = LargestOfThree(luminance, threshold + 0.01f, c2 * 0.22f);

  const Real a = -5.0f - threshold;
  const Real b = 0.0f - threshold;
  const Real x = smallest - threshold;
  const Real curve = (x * a) * b / (((a - b) * x + a * b) + 1e-15f) + threshold;
  const Real floor = curve < 0.0f ? Uniform(0.0f, curve) : curve;

  const Real scale = (floor - grey) / (smallest - grey);
  pixel[0] = isInside ? c0 : (c0 - grey) * scale + grey;
  pixel[1] = isInside ? c1 : (c1 - grey) * scale + grey;
  pixel[2] = isInside ? c2 : (c2 - grey) * scale + grey;
}
