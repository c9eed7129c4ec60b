#include "tonemap/Algorithms.h"

#include <algorithm>
#include <array>

namespace Quillon {

using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

template <class Curve>
ToneMapAlgorithm AlgorithmOf() {
  ToneMapAlgorithm algorithm{Curve::kFacts, Curve::kBuildParams, Curve{}, nullptr};
  if constexpr (requires { &Curve::Bind; }) algorithm.bind = Curve::Bind;
  return algorithm;
}

template <class... Curves>
std::array<ToneMapAlgorithm, sizeof...(Curves)> AlgorithmsOf(CurveList<Curves...> /*list*/) {
  return {AlgorithmOf<Curves>()...};
}

}  // namespace

const ToneMapAlgorithm* FindToneMapAlgorithm(ToneMapAlgorithmType algorithmType) {
  static const auto kAlgorithms = AlgorithmsOf(ToneCurves{});
  const auto* found = std::find_if(kAlgorithms.begin(), kAlgorithms.end(), [&](const auto& entry) {
    return entry.facts.type == algorithmType;
  });
  return found == kAlgorithms.end() ? nullptr : found;
}

}  // namespace Quillon
