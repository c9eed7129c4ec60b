#include "tonemap/Algorithms.h"

#include <array>

#include "cpu/GamutCompression.h"
#include "mapper/Mapping.h"

namespace Quillon::Mapper {

namespace {

constexpr auto kAlgorithms = [] {
  std::array<Named<Algorithm>, kToneCurves.size() + 2> names{};
  auto* name = names.begin();
  *name++ = {"auto", Algorithm::Automatic};
  for (const auto& curve : kToneCurves) *name++ = {curve.id, curve.type};
  *name = {"none", Algorithm::None};
  return names;
}();

constexpr auto kGamutAlgorithms = [] {
  std::array<Named<GamutAlgorithm>, kGamutCurves.size() + 1> names{};
  auto* name = names.begin();
  *name++ = {"none", GamutAlgorithm::None};
  for (const auto& curve : kGamutCurves) *name++ = {curve.id, curve.type};
  return names;
}();

constexpr std::array<Named<GamutFitting>, 2> kGamutFittings{
    {{"hue", GamutFitting::Hue}, {"clip", GamutFitting::Clip}}};

}  // namespace

std::span<const Named<Algorithm>> Algorithms() { return kAlgorithms; }

std::span<const Named<GamutAlgorithm>> GamutAlgorithms() { return kGamutAlgorithms; }

std::span<const Named<GamutFitting>> GamutFittings() { return kGamutFittings; }

std::string_view AlgorithmName(Algorithm algorithm) {
  for (const auto& known : kAlgorithms) {
    if (known.value == algorithm) return known.name;
  }
  return {};
}

bool HasKnee(Algorithm algorithm) {
  const ToneCurveFacts* curve = FindToneCurve(algorithm);
  return curve != nullptr && curve->knee && curve->knee->isSetting;
}

}  // namespace Quillon::Mapper
