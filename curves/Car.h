#pragma once

#include "curves/Three.h"
#include "curves/math.h"

/// The CAR curve on one pixel's three colour channels in place, highlights desaturated already:
/// above the knee all channels are scaled by the ratio of a rational curve of the largest. `a` and
/// `b` are the curve's coefficients for the knee; all values in linear light.
///
/// Deliberate: the power with exponent 1 stands as it is.
QUILLON_CURVE void ToneMapCar(Real* pixel, float knee, float a, float b, float destinationPeak) {
  const Real c0 = pixel[0];
  const Real c1 = pixel[1];
  const Real c2 = pixel[2];
  const Real largest = LargestOfThree(c0, c1, c2);
  const QUILLON_MASK isAbove = largest > knee;
  if (!AnyOf(isAbove)) return;

  const Real excess = isAbove ? largest - knee : Uniform(1.0f, largest);
  const Real distance = Power(excess, 1.25f);
  const float room = destinationPeak - knee;
  const Real mapped =
      distance * room / ((Power(distance, 1.0f) * b + a + room) - (1.0f - knee) + 1e-15f) + knee;
  const Real ratio = ClampToUnit(largest > 0.0f ? mapped / largest : Uniform(1.0f, largest));
  pixel[0] = isAbove ? c0 * ratio : c0;
  pixel[1] = isAbove ? c1 * ratio : c1;
  pixel[2] = isAbove ? c2 * ratio : c2;
}
