#pragma once

#include "curves/Three.h"
#include "curves/math.h"

// The CAR curve: a rational curve above a knee, by which the largest channel scales the pixel.

#define QUILLON_CAR_EXPONENT 1.25f

/// How far the largest channel lies above the knee; 1 if it does not.
QUILLON_CURVE Real CarExcess(Real largest, float knee) {
  return largest > knee ? largest - knee : Uniform(1.0f, largest);
}

/// Scales one pixel's three colour channels in place if its largest lies above the knee. `distance`
/// is the power of its excess, `a` and `b` are the curve's coefficients for the knee; all values in
/// linear light.
///
/// Deliberate: b scales the distance to the power of 1, which is the distance.
QUILLON_CURVE void ScaleByCar(Real* pixel, Real largest, Real distance, float knee, float a,
                              float b, float destinationPeak) {
  const float room = destinationPeak - knee;
  const Real mapped = distance * room / ((distance * b + a + room) - (1.0f - knee) + 1e-15f) + knee;
  const Real ratio = ClampToUnit(largest > 0.0f ? mapped / largest : Uniform(1.0f, largest));
  const QUILLON_MASK isAbove = largest > knee;
  pixel[0] = isAbove ? pixel[0] * ratio : pixel[0];
  pixel[1] = isAbove ? pixel[1] * ratio : pixel[1];
  pixel[2] = isAbove ? pixel[2] * ratio : pixel[2];
}

/// One pixel's three colour channels in place, highlights desaturated already.
QUILLON_CURVE void ToneMapCar(Real* pixel, float knee, float a, float b, float destinationPeak) {
  const Real largest = LargestOfThree(pixel[0], pixel[1], pixel[2]);
  if (!AnyOf(largest > knee)) return;
  const Real distance = Power(CarExcess(largest, knee), QUILLON_CAR_EXPONENT);
  ScaleByCar(pixel, largest, distance, knee, a, b, destinationPeak);
}
