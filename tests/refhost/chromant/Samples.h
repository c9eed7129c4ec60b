#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/PixelFormat.h"
#include "tests/refhost/Spaces.h"

/// The pixel formats that are converted.
inline constexpr orvmediatypes::PixelFormat kFloatBGRA = orvmediatypes::kLinearFloatBGRA;
inline constexpr orvmediatypes::PixelFormat kHalfBGRA = {kFloatBGRA.fourCC, 0x00080136U};
inline constexpr orvmediatypes::PixelFormat k16BitBGRA = {kFloatBGRA.fourCC, 0x00080134U};
inline constexpr orvmediatypes::PixelFormat k8BitBGRA = {kFloatBGRA.fourCC, 0x00080130U};

/// Red, green and blue.
using Rgb = std::array<float, 3>;

/// A lattice of colours from `lowest` to `highest`, greys and primaries among them.
std::vector<Rgb> Lattice(int steps, float lowest = 0.0F, float highest = 1.0F);

/// Float pixels through `CHR::ConvertFrame`, red, green and blue in and out.
std::vector<Rgb> Converted(const std::vector<Rgb>& pixels,
                           const orvmediatypes::color::ColorSpace& from,
                           const orvmediatypes::color::ColorSpace& to,
                           std::uint32_t whiteNits = 203);

/// The lattice in full-range 8-bit or 16-bit integers, and such pixels converted.
template <class Component>
std::vector<std::array<Component, 3>> IntegerLattice(int steps);
template <class Component>
std::vector<std::array<Component, 3>> ConvertedIntegers(
    const std::vector<std::array<Component, 3>>& pixels,
    const orvmediatypes::color::ColorSpace& from, const orvmediatypes::color::ColorSpace& to);

/// Channels equal to within a relative error of their pixel's largest channel.
void ExpectNear(const std::vector<Rgb>& actual, const std::vector<Rgb>& expected, double relative);
