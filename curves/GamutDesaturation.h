#pragma once

#include "curves/Three.h"

/// Gamut compression of one pixel's three colour channels (blue, green, red) in place: when the
/// smallest lies below 4 % of the largest, the pixel moves along the line to a grey anchor until
/// its smallest channel stands at a soft floor, which reaches 0 at -5. Weights are the luminance
/// weights of red, green and blue.
inline void CompressGamutDesaturation(float* pixel, float weightRed, float weightGreen,
                                      float weightBlue) {
  const float c0 = pixel[0];
  const float c1 = pixel[1];
  const float c2 = pixel[2];
  const float largest = LargestOfThree(c0, c1, c2);
  const float positive = largest > 0.0f ? largest : 0.0f;
  const float scaled = positive * (1.0f - 0.96f);
  const float threshold = scaled > 1e-15f ? scaled : 1e-15f;
  const float smallest = SmallestOfThree(c0, c1, c2);
  if (smallest >= threshold) return;

  // Deliberate: red counts with both the red and the blue weight, blue not at all.
  const float luminance = weightGreen * c1 + weightRed * c2 + weightBlue * c2;
  const float grey = LargestOfThree(luminance, threshold + 0.01f, c2 * 0.22f);

  const float a = -5.0f - threshold;
  const float b = 0.0f - threshold;
  const float x = smallest - threshold;
  float floor = (x * a) * b / (((a - b) * x + a * b) + 1e-15f) + threshold;
  if (floor < 0.0f) floor = 0.0f;

  const float scale = (floor - grey) / (smallest - grey);
  pixel[0] = (c0 - grey) * scale + grey;
  pixel[1] = (c1 - grey) * scale + grey;
  pixel[2] = (c2 - grey) * scale + grey;
}
