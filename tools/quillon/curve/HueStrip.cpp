#include "tools/quillon/curve/HueStrip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/curve/GreyRamp.h"
#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

struct Hue {
  std::string_view name;
  std::array<float, 3> rgb;  // linear, BT.709 primaries, the largest 1
};

constexpr std::array<Hue, 8> kHues = {{
    {"red", {1.0F, 0.0F, 0.0F}},
    {"yellow", {1.0F, 1.0F, 0.0F}},
    {"green", {0.0F, 1.0F, 0.0F}},
    {"cyan", {0.0F, 1.0F, 1.0F}},
    {"blue", {0.0F, 0.0F, 1.0F}},
    {"magenta", {1.0F, 0.0F, 1.0F}},
    {"grey", {1.0F, 1.0F, 1.0F}},
    {"skin", {1.0F, 0.566F, 0.413F}},
}};

ColorSpace BT709(std::uint8_t transfer) {
  ColorDescription description;
  description.primaries = RefHost::kPrimariesBT709;
  description.transfer = transfer;
  return ColorSpace(description);
}

std::uint8_t ToByte(float signal) {
  if (!(signal > 0.0F)) return 0;  // not a number is black
  return static_cast<std::uint8_t>(std::lround(std::min(signal, 1.0F) * 255.0F));
}

/// sRGB in which the target peak is white.
std::vector<std::array<std::uint8_t, 3>> Show(const PX::VideoFrameRef& mapped,
                                              double targetPeakNits, int white) {
  const PX::VideoFrameRef light = ConvertToFloat(mapped, BT709(RefHost::kTransferLinear), white);
  const FloatPixels pixels = ViewFloatPixels(light);
  const auto scale = static_cast<float>(white / targetPeakNits);
  for (int y = 0; y < pixels.height; ++y) {
    float* row = pixels.Row(y);
    for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{4} * pixels.width; ++i) row[i] *= scale;
  }
  const PX::VideoFrameRef signal = ConvertToFloat(light, BT709(RefHost::kTransferSRGB), white);
  const FloatPixels encoded = ViewFloatPixels(signal);
  std::vector<std::array<std::uint8_t, 3>> shown;
  for (int y = 0; y < encoded.height; ++y) {
    const float* pixel = encoded.Row(y);
    for (int x = 0; x < encoded.width; ++x, pixel += 4) {
      shown.push_back({ToByte(pixel[2]), ToByte(pixel[1]), ToByte(pixel[0])});
    }
  }
  return shown;
}

}  // namespace

std::vector<std::string> HueNames() {
  std::vector<std::string> names;
  names.reserve(kHues.size());
  for (const Hue& hue : kHues) names.emplace_back(hue.name);
  return names;
}

PX::VideoFrameRef RenderHues(const std::vector<float>& nits, int white) {
  PX::VideoFrameRef frame =
      MakeFloatFrame(static_cast<int>(nits.size()), static_cast<int>(kHues.size()),
                     BT709(RefHost::kTransferLinear));
  const FloatPixels pixels = ViewFloatPixels(frame);
  for (std::size_t row = 0; row < kHues.size(); ++row) {
    const auto& [red, green, blue] = kHues[row].rgb;
    float* pixel = pixels.Row(static_cast<int>(row));
    for (const float luminance : nits) {
      const auto linear = static_cast<float>(double{luminance} / white);
      const std::array<float, 4> bgra = {blue * linear, green * linear, red * linear, 1.0F};
      pixel = std::copy(bgra.begin(), bgra.end(), pixel);
    }
  }
  return frame;
}

MappedHues ReadMappedHues(const PX::VideoFrameRef& mapped, double targetPeakNits, int white) {
  MappedHues hues;
  const std::vector<double> red = ComponentNits(mapped, 2, white);
  const std::vector<double> green = ComponentNits(mapped, 1, white);
  const std::vector<double> blue = ComponentNits(mapped, 0, white);
  for (std::size_t i = 0; i < red.size(); ++i) hues.nits.push_back({red[i], green[i], blue[i]});
  hues.shown = Show(mapped, targetPeakNits, white);
  return hues;
}

}  // namespace Quillon::Cli
