#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

namespace Quillon {

/// Curves by their types. Each has `kFacts`, what is told of it.
template <class... Curves>
struct CurveList {};

/// The place of a curve in a list that it is in.
template <class Curve, class... Curves>
consteval std::size_t PlaceIn(CurveList<Curves...> /*list*/) {
  const std::array<bool, sizeof...(Curves)> isCurve = {std::is_same_v<Curve, Curves>...};
  return static_cast<std::size_t>(std::find(isCurve.begin(), isCurve.end(), true) -
                                  isCurve.begin());
}

/// What is told of each, in the list's order.
template <class... Curves>
consteval auto FactsOf(CurveList<Curves...> /*list*/) {
  return std::array{Curves::kFacts...};
}

/// What is told of the curve of an algorithm, or null.
template <class Facts, std::size_t count, class Algorithm>
constexpr const Facts* FindFacts(const std::array<Facts, count>& facts, Algorithm algorithm) {
  for (const Facts& curve : facts) {
    if (curve.type == algorithm) return &curve;
  }
  return nullptr;
}

}  // namespace Quillon
