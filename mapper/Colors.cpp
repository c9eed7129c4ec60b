#include "mapper/Colors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "refhost/orvmediatypes/H273.h"

namespace Quillon::Mapper {

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;

namespace {

struct NamedSpace {
  std::string_view name;
  std::string_view alias;  // FFmpeg's name; empty where it has none
  std::string_view title;
  std::uint8_t primaries;
  std::uint8_t transfer;
  std::uint8_t matrix;
  Chromaticities chromaticities{};  // of primaries that have no code point
};

// SMPTE ST 2065-1, and Academy S-2014-004 (ACEScg).
constexpr Chromaticities kAP0 = {
    {0.7347, 0.2653}, {0.0, 1.0}, {0.0001, -0.0770}, {0.32168, 0.33767}};
constexpr Chromaticities kAP1 = {
    {0.713, 0.293}, {0.165, 0.830}, {0.128, 0.044}, {0.32168, 0.33767}};

constexpr std::array<NamedSpace, 11> kSpaces = {{
    {"srgb", "iec61966-2-1", "sRGB", 1, 13, 1},
    {"bt709", "", "BT.709", 1, 1, 1},
    {"p3-d65", "smpte432", "P3-D65 with the sRGB curve", 12, 13, 1},
    {"bt2020", "bt2020-10", "BT.2020", 9, 14, 9},
    {"bt2100-pq", "smpte2084", "BT.2100 PQ", 9, 16, 9},
    {"bt2100-hlg", "arib-std-b67", "BT.2100 HLG", 9, 18, 9},
    {"linear-bt709", "", "linear light", 1, 8, 0},
    {"linear-p3", "", "linear light", 12, 8, 0},
    {"linear-bt2020", "", "linear light", 9, 8, 0},
    {"acescg", "", "ACEScg", 2, 8, 0, kAP1},
    {"aces2065-1", "", "ACES2065-1", 2, 8, 0, kAP0},
}};

/// As files round them.
bool AreNear(const Chromaticities& one, const Chromaticities& other) {
  constexpr double kRounding = 1e-4;
  const auto near = [](const Chromaticity& a, const Chromaticity& b) {
    return std::abs(a.x - b.x) <= kRounding && std::abs(a.y - b.y) <= kRounding;
  };
  return near(one.red, other.red) && near(one.green, other.green) && near(one.blue, other.blue) &&
         near(one.white, other.white);
}

std::string_view TransferTitle(std::uint8_t transfer) {
  switch (transfer) {
    case 8:
      return "linear light";
    case 16:
      return "PQ";
    case 18:
      return "HLG";
    default:
      return "";
  }
}

/// Primaries, transfer, matrix.
using CodePoints = std::array<std::uint8_t, 3>;

ColorDescription Description(const CodePoints& points) {
  ColorDescription description;
  description.primaries = points[0];
  description.transfer = points[1];
  description.matrix = points[2];
  return description;
}

std::optional<CodePoints> ParseCodePoints(std::string_view text) {
  CodePoints points{};
  const char* next = text.data();
  const char* const end = next + text.size();
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i > 0 && (next == end || *next++ != '/')) return std::nullopt;
    const auto [rest, error] = std::from_chars(next, end, points[i]);
    if (error != std::errc()) return std::nullopt;
    next = rest;
  }
  return next == end ? std::optional(points) : std::nullopt;
}

}  // namespace

std::optional<ColorDescription> ColorSpaceOfName(std::string_view name) {
  const auto* found = std::find_if(kSpaces.begin(), kSpaces.end(), [&](const NamedSpace& space) {
    return space.name == name || (!space.alias.empty() && space.alias == name);
  });
  if (found == kSpaces.end()) return std::nullopt;
  ColorDescription description = Description({found->primaries, found->transfer, found->matrix});
  description.chromaticities = found->chromaticities;
  return description;
}

std::string ColorSpaceNames() {
  std::string names;
  for (const NamedSpace& space : kSpaces) {
    if (!names.empty()) names += ' ';
    names += space.name;
  }
  return names;
}

std::optional<ColorDescription> ColorSpaceOfCicp(std::string_view text) {
  const auto points = ParseCodePoints(text);
  return points ? std::optional(Description(*points)) : std::nullopt;
}

std::string DescribeColorSpace(const ColorDescription& description) {
  std::string title(TransferTitle(description.transfer));
  for (const NamedSpace& space : kSpaces) {
    if (space.primaries == description.primaries && space.transfer == description.transfer &&
        AreNear(space.chromaticities, description.chromaticities)) {
      title = space.title;
    }
  }
  const std::string points = "CICP " + std::to_string(description.primaries) + '/' +
                             std::to_string(description.transfer) + '/' +
                             std::to_string(description.matrix);
  return title.empty() ? points : title + " (" + points + ')';
}

bool TellsColors(const ColorDescription& description) {
  const orvmediatypes::color::ColorSpace colorSpace(description);
  return Tells(description.transfer) &&
         (Tells(description.primaries) || RefHost::ChromaticitiesOf(colorSpace).has_value());
}

}  // namespace Quillon::Mapper
