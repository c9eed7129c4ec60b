#pragma once

#include <cstddef>
#include <random>
#include <vector>

#include "tests/curves/CurveDomains.h"

namespace curves {

/// An endless row of what a curve is tried on. First, for each setting, every combination of
/// notable values in the channels: not a number, the infinities, zeros, denormals, the smallest and
/// the largest floats, and the setting's thresholds, with the floats next to them, of both signs.
/// Then random values, ordinary ones, ones of all magnitudes, notable ones and random bits; one
/// time in eight the setting is random too. The same row every time.
template <class Number>
class CurveInputs {
 public:
  explicit CurveInputs(const Domain<Number>& domain);

  std::size_t Combinations() const;

  /// Writes the next channels and params.
  void Next(Number* in);

 private:
  void NextCombination(Number* in);
  void NextRandom(Number* in);
  Number RandomNumber(const std::vector<Number>& notable);
  std::size_t Below(std::size_t count);

  const Domain<Number>& domain_;
  std::vector<std::vector<Number>> notable_;  ///< by setting
  std::size_t setting_ = 0;
  std::size_t combination_ = 0;
  std::mt19937_64 random_{20};
};

extern template class CurveInputs<float>;
extern template class CurveInputs<double>;

}  // namespace curves
