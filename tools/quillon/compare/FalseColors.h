#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace Quillon::Cli {

/// Red, green and blue in sRGB.
using FalseColor = std::array<std::uint8_t, 3>;

/// Delta-E ITP from `from` up to the next band.
struct DeltaEBand {
  float from;
  std::string_view label;
  FalseColor color;
};

/// Darkest to brightest, so that the order is seen without the legend. Below 1 a difference is not
/// seen (ITU-R BT.2124-0).
inline constexpr std::array<DeltaEBand, 7> kDeltaEBands = {{
    {0.0F, "below 1", {12, 10, 24}},
    {1.0F, "1 to 2", {52, 24, 104}},
    {2.0F, "2 to 5", {120, 28, 120}},
    {5.0F, "5 to 10", {190, 52, 96}},
    {10.0F, "10 to 20", {232, 104, 48}},
    {20.0F, "20 to 50", {250, 176, 40}},
    {50.0F, "50 and above", {252, 250, 190}},
}};

/// Marks of pixels, told apart by colour-blind readers (Okabe and Ito).
inline constexpr FalseColor kClippedColor = {213, 94, 0};
inline constexpr FalseColor kOutOfGamutColor = {86, 180, 233};
inline constexpr FalseColor kBothColor = {240, 228, 66};
inline constexpr FalseColor kNotFiniteColor = {0, 158, 115};

/// The colour of a band; `kNotFiniteColor` for what is not a number.
FalseColor DeltaEColor(float deltaE);

/// The colour of a pixel's marks, or `unmarked`.
FalseColor MarkColor(unsigned marks, const FalseColor& unmarked);

}  // namespace Quillon::Cli
