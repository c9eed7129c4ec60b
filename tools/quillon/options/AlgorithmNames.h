#pragma once

#include <array>
#include <string_view>

#include "cpu/GamutCompression.h"
#include "tonemap/Algorithms.h"
#include "tools/quillon/options/Choice.h"

/// What `--algorithm` takes.
inline constexpr auto kAlgorithms = [] {
  using enum orvmediatypes::color::ToneMapAlgorithmType;
  std::array<Choice<orvmediatypes::color::ToneMapAlgorithmType>, Quillon::kToneCurves.size() + 2>
      choices{};
  auto* choice = choices.begin();
  *choice++ = {"auto", Automatic};
  for (const auto& curve : Quillon::kToneCurves) *choice++ = {curve.id, curve.type};
  *choice = {"none", None};
  return choices;
}();

/// What `--gamut` takes.
inline constexpr auto kGamuts = [] {
  using enum orvmediatypes::color::GamutCompressionAlgorithmType;
  std::array<Choice<orvmediatypes::color::GamutCompressionAlgorithmType>,
             Quillon::kGamutCurves.size() + 1>
      choices{};
  auto* choice = choices.begin();
  *choice++ = {"none", None};
  for (const auto& curve : Quillon::kGamutCurves) *choice++ = {curve.id, curve.type};
  return choices;
}();

/// The name that `--algorithm` has for an algorithm; empty for a value that it does not take.
constexpr std::string_view AlgorithmName(orvmediatypes::color::ToneMapAlgorithmType algorithm) {
  for (const auto& choice : kAlgorithms) {
    if (choice.value == algorithm) return choice.name;
  }
  return {};
}
