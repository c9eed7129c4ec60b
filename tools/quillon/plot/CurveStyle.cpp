#include "tools/quillon/plot/CurveStyle.h"

#include <algorithm>
#include <array>

namespace Quillon::Cli {

namespace {

constexpr Color Hex(unsigned rgb) {
  return {(rgb >> 16U & 0xFFU) / 255.0, (rgb >> 8U & 0xFFU) / 255.0, (rgb & 0xFFU) / 255.0};
}

struct NamedStyle {
  std::string_view name;
  Color color;
  std::array<double, 2> dashes;  // 0: solid
};

constexpr std::array<NamedStyle, 7> kStyles = {{
    {"auto", Hex(0x000000), {5.0, 7.0}},
    {"bt2390-maxrgb", Hex(0x0072B2), {}},
    {"bt2390-rgb", Hex(0xE69F00), {7.0, 7.0}},
    {"bt2446a", Hex(0x009E73), {}},
    {"hue", Hex(0xD55E00), {}},
    {"car", Hex(0xCC79A7), {}},
    {"none", Hex(0x56B4E9), {3.0, 3.0}},
}};

}  // namespace

CurveStyle StyleOf(std::string_view algorithm) {
  const auto* found = std::find_if(kStyles.begin(), kStyles.end(), [&](const NamedStyle& style) {
    return style.name == algorithm;
  });
  if (found == kStyles.end()) return {kInk, {}};
  CurveStyle style{found->color, {}};
  if (found->dashes[0] > 0.0) style.dashes.assign(found->dashes.begin(), found->dashes.end());
  return style;
}

}  // namespace Quillon::Cli
