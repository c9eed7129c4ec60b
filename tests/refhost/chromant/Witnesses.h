#pragma once

// The same pixels (red, green, blue) as OpenColorIO and zimg convert them.

#include <array>
#include <cstdint>
#include <vector>

#include "tests/refhost/chromant/Samples.h"

std::vector<Rgb> ThroughOcioBuiltin(std::vector<Rgb> pixels, const char* style);

/// A power, odd about 0.
std::vector<Rgb> ThroughOcioPower(std::vector<Rgb> pixels, double exponent);

/// ((signal + offset) / (1 + offset)) ^ exponent, with a straight line near 0.
std::vector<Rgb> ThroughOcioMonitorCurve(std::vector<Rgb> pixels, double exponent, double offset);

/// H.273 code points of an RGB picture.
struct Cicp {
  std::uint8_t primaries;
  std::uint8_t transfer;
};

/// The same pixels (red, green, blue) converted by zimg, signals in and signals out, linear 1.0 at
/// this white. Components are float, or full-range 8-bit or 16-bit integers.
template <class Component>
std::vector<std::array<Component, 3>> ConvertedByZimg(
    const std::vector<std::array<Component, 3>>& pixels, Cicp from, Cicp to, double whiteNits);
