#pragma once

#include <cmath>

#include "curves/Three.h"

/// The CAR curve on one pixel's three colour channels in place, highlights desaturated already:
/// above the knee all channels are scaled by the ratio of a rational curve of the largest. `a` and
/// `b` are the curve's coefficients for the knee; all values in linear light.
///
/// Deliberate: the power with exponent 1 stands as it is.
inline void ToneMapCar(float* pixel, float knee, float a, float b, float destinationPeak) {
  const float largest = LargestOfThree(pixel[0], pixel[1], pixel[2]);
  if (!(largest > knee)) return;
  float ratio = 1.0f;
  if (largest > 0.0f) {
    const float distance = powf(largest - knee, 1.25f);
    const float room = destinationPeak - knee;
    const float mapped =
        distance * room / ((powf(distance, 1.0f) * b + a + room) - (1.0f - knee) + 1e-15f) + knee;
    ratio = mapped / largest;
  }
  ratio = ClampToUnit(ratio);
  pixel[0] *= ratio;
  pixel[1] *= ratio;
  pixel[2] *= ratio;
}
