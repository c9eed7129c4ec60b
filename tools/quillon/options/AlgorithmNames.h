#pragma once

#include <array>
#include <string_view>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "tools/quillon/process/Choice.h"

/// What `--algorithm` takes.
inline constexpr std::array<Choice<orvmediatypes::color::ToneMapAlgorithmType>, 7> kAlgorithms = {{
    {"auto", orvmediatypes::color::ToneMapAlgorithmType::Automatic},
    {"bt2390-maxrgb", orvmediatypes::color::ToneMapAlgorithmType::ITU2390MaxRGB},
    {"bt2390-rgb", orvmediatypes::color::ToneMapAlgorithmType::ITU2390RGBByChannel},
    {"bt2446a", orvmediatypes::color::ToneMapAlgorithmType::ITU2446A},
    {"hue", orvmediatypes::color::ToneMapAlgorithmType::HuePreservationDesaturation},
    {"car", orvmediatypes::color::ToneMapAlgorithmType::CARToneCurve},
    {"none", orvmediatypes::color::ToneMapAlgorithmType::None},
}};

/// What `--gamut` takes.
inline constexpr std::array<Choice<orvmediatypes::color::GamutCompressionAlgorithmType>, 3>
    kGamuts = {{
        {"none", orvmediatypes::color::GamutCompressionAlgorithmType::None},
        {"reinhard", orvmediatypes::color::GamutCompressionAlgorithmType::Reinhard},
        {"desaturate", orvmediatypes::color::GamutCompressionAlgorithmType::Desaturation},
    }};

/// The name that `--algorithm` has for an algorithm; empty for a value that it does not take.
constexpr std::string_view AlgorithmName(orvmediatypes::color::ToneMapAlgorithmType algorithm) {
  for (const auto& choice : kAlgorithms) {
    if (choice.value == algorithm) return choice.name;
  }
  return {};
}
