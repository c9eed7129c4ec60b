#pragma once

/// The largest of three, scanning from the first: a later entry takes its place only when it is
/// greater. An entry that is not a number is never picked unless it is the first.
inline float LargestOfThree(float first, float second, float third) {
  float largest = first;
  if (largest < second) largest = second;
  if (largest < third) largest = third;
  return largest;
}

/// The smallest of three, by the same rule.
inline float SmallestOfThree(float first, float second, float third) {
  float smallest = first;
  if (second < smallest) smallest = second;
  if (third < smallest) smallest = third;
  return smallest;
}

/// Clamped to [0, 1]; what is not a number passes.
inline float ClampToUnit(float value) {
  if (value < 0.0f) return 0.0f;
  if (value > 1.0f) return 1.0f;
  return value;
}
