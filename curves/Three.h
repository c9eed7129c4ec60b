#pragma once

#include "curves/Language.h"

/// The largest of three, scanning from the first: a later entry takes its place only when it is
/// greater. An entry that is not a number is never picked unless it is the first.
QUILLON_CURVE Real LargestOfThree(Real first, Real second, Real third) {
  const Real largest = first < second ? second : first;
  return largest < third ? third : largest;
}

/// The smallest of three, by the same rule.
QUILLON_CURVE Real SmallestOfThree(Real first, Real second, Real third) {
  const Real smallest = second < first ? second : first;
  return third < smallest ? third : smallest;
}

/// Clamped to [0, 1]; what is not a number passes.
QUILLON_CURVE Real ClampToUnit(Real value) {
  const Real positive = value < 0.0f ? Uniform(0.0f, value) : value;
  return positive > 1.0f ? Uniform(1.0f, value) : positive;
}
