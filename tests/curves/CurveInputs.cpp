#include "tests/curves/CurveInputs.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace curves {

namespace {

template <class Number>
std::vector<Number> NotableNumbers(const std::vector<Number>& thresholds) {
  using Limits = std::numeric_limits<Number>;
  std::vector<Number> numbers = {
      Number{0},     Limits::denorm_min(), std::nextafter(Limits::min(), Number{0}),
      Limits::min(), Limits::max(),        Limits::infinity()};
  for (const Number threshold : thresholds) {
    numbers.push_back(std::nextafter(threshold, -Limits::infinity()));
    numbers.push_back(threshold);
    numbers.push_back(std::nextafter(threshold, Limits::infinity()));
  }
  const std::size_t positive = numbers.size();
  for (std::size_t i = 0; i < positive; ++i) numbers.push_back(-numbers[i]);
  numbers.push_back(Limits::quiet_NaN());
  return numbers;
}

std::size_t PowerOf(std::size_t base, int exponent) {
  std::size_t power = 1;
  for (int i = 0; i < exponent; ++i) power *= base;
  return power;
}

}  // namespace

template <class Number>
CurveInputs<Number>::CurveInputs(const Domain<Number>& domain) : domain_(domain) {
  for (const Setting<Number>& setting : domain.settings) {
    notable_.push_back(NotableNumbers(setting.thresholds));
  }
}

template <class Number>
std::size_t CurveInputs<Number>::Combinations() const {
  std::size_t count = 0;
  for (const auto& notable : notable_) count += PowerOf(notable.size(), domain_.channels);
  return count;
}

template <class Number>
void CurveInputs<Number>::Next(Number* in) {
  if (setting_ < notable_.size()) {
    NextCombination(in);
  } else {
    NextRandom(in);
  }
}

template <class Number>
void CurveInputs<Number>::NextCombination(Number* in) {
  const std::vector<Number>& notable = notable_[setting_];
  std::size_t rest = combination_;
  for (int channel = 0; channel < domain_.channels; ++channel) {
    in[channel] = notable[rest % notable.size()];
    rest /= notable.size();
  }
  std::copy_n(domain_.settings[setting_].params.begin(), domain_.settings[setting_].params.size(),
              in + domain_.channels);
  if (++combination_ == PowerOf(notable.size(), domain_.channels)) {
    combination_ = 0;
    ++setting_;
  }
}

template <class Number>
void CurveInputs<Number>::NextRandom(Number* in) {
  const std::size_t chosen = Below(notable_.size());
  const std::vector<Number>& notable = notable_[chosen];
  for (int channel = 0; channel < domain_.channels; ++channel) {
    in[channel] = RandomNumber(notable);
  }
  const bool isOfItsOwn = Below(8) == 0;
  Number* param = in + domain_.channels;
  for (const Number set : domain_.settings[chosen].params) {
    *param++ = isOfItsOwn && Below(2) == 0 ? RandomNumber(notable) : set;
  }
}

template <class Number>
Number CurveInputs<Number>::RandomNumber(const std::vector<Number>& notable) {
  using Bits =
      std::conditional_t<sizeof(Number) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
  const auto fraction = static_cast<Number>(static_cast<double>(random_() >> 11) * 0x1p-53);
  switch (Below(16)) {
    case 0:
      return std::bit_cast<Number>(static_cast<Bits>(random_()));
    case 1:
      return notable[Below(notable.size())];
    case 2:
    case 3: {
      const Number magnitude = std::exp2((fraction - Number{0.5}) * Number{80});
      return Below(2) == 0 ? magnitude : -magnitude;
    }
    default:
      return (fraction * Number{1.5} - Number{0.25}) * domain_.top;
  }
}

template <class Number>
std::size_t CurveInputs<Number>::Below(std::size_t count) {
  return static_cast<std::size_t>(random_() % count);
}

template class CurveInputs<float>;
template class CurveInputs<double>;

}  // namespace curves
