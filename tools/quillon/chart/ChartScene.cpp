#include "tools/quillon/chart/ChartScene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "host/chromant/TransferFunctions.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

/// Light of one point in nits, BT.2020 primaries.
struct Light {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

Light Grey(double nits) { return {nits, nits, nits}; }

Light Scaled(const Light& light, double factor) {
  return {light.red * factor, light.green * factor, light.blue * factor};
}

Light Mixed(const Light& from, const Light& to, double share) {
  return {std::lerp(from.red, to.red, share), std::lerp(from.green, to.green, share),
          std::lerp(from.blue, to.blue, share)};
}

/// Fully saturated colour of a hue, 0 to 1 round the circle from red; the largest component is 1.
Light Hue(double hue) {
  const auto component = [hue](double offset) {
    const double place = std::fmod(hue * 6.0 + offset, 6.0);
    return std::clamp(std::abs(place - 3.0) - 1.0, 0.0, 1.0);
  };
  return {component(0.0), component(4.0), component(2.0)};
}

double DecodePQ(double signal) {
  static const CHR::TransferFunction kDecode =
      CHR::GetSignalToLinearTransferFn(RefHost::kTransferPQ, 0);
  std::array<float, 3> pixel = {static_cast<float>(signal), 0.0F, 0.0F};
  kDecode(pixel.data(), 1.0F);
  return pixel[0];
}

/// Even steps in PQ from 0 to the chart's peak.
double RampNits(double share) {
  static const double kPeakSignal = [] {
    std::array<float, 3> pixel = {static_cast<float>(kChartPeakNits), 0.0F, 0.0F};
    CHR::GetLinearToSignalTransferFn(RefHost::kTransferPQ, 0)(pixel.data(), 1.0F);
    return static_cast<double>(pixel[0]);
  }();
  return std::min(DecodePQ(share * kPeakSignal), kChartPeakNits);
}

// Each region is painted from coordinates u to the right and v downwards, 0 to 1.

Light GreyRamp(double u, double /*v*/) { return Grey(RampNits(u)); }

Light FlatPatches(double u, double /*v*/) {
  constexpr std::array<double, 9> kNits = {0, 1, 10, 26, 100, 203, 400, 1000, 4000};
  const auto patch = std::min(static_cast<std::size_t>(u * kNits.size()), kNits.size() - 1);
  return Grey(kNits[patch]);
}

/// Red, yellow, green, cyan, blue and magenta from black to 1000 nits.
Light SaturatedRamps(double u, double v) {
  constexpr double kRamps = 6.0;
  constexpr double kPeakNits = 1000.0;
  const double ramp = std::min(std::floor(v * kRamps), kRamps - 1.0);
  return Scaled(Hue(ramp / kRamps), kPeakNits * u * u);
}

/// All hues at 203 nits, from grey at the bottom to the BT.2020 boundary at the top.
Light HueSweep(double u, double v) {
  constexpr double kNits = 203.0;
  return Mixed(Grey(kNits), Scaled(Hue(u), kNits), 1.0 - v);
}

/// A white core at the chart's peak in an orange glow before a dim wall.
Light Highlight(double u, double v) {
  const double distance = std::hypot(u - 0.5, (v - 0.5) * 0.8);
  const Light wall = {14.0, 16.0, 22.0};
  const Light glow = {1600.0, 420.0, 30.0};
  const double glowShare = std::exp(-distance * distance / 0.045);
  const double coreShare = 1.0 - std::clamp((distance - 0.09) / 0.04, 0.0, 1.0);
  return Mixed(Mixed(wall, glow, glowShare), Grey(kChartPeakNits), coreShare);
}

/// A weave of steps from 0.005 to 2 nits, with a little colour.
Light DarkCorner(double u, double v) {
  const double nits = 0.005 * std::pow(400.0, u);
  const double weave = 0.5 + 0.5 * std::sin(12.0 * std::numbers::pi * (u + v)) *
                                 std::sin(10.0 * std::numbers::pi * v);
  return Mixed(Grey(nits), Light{nits * 0.6, nits * 0.8, nits * 1.6}, weave);
}

struct Region {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  Light (*paint)(double u, double v) = nullptr;
  bool moves = false;
};

constexpr std::array<Region, 6> kRegions = {{
    {0.02, 0.03, 0.98, 0.15, GreyRamp},
    {0.02, 0.17, 0.98, 0.33, FlatPatches},
    {0.02, 0.36, 0.34, 0.97, SaturatedRamps},
    {0.36, 0.36, 0.66, 0.97, HueSweep},
    {0.68, 0.36, 0.98, 0.70, Highlight, true},
    {0.68, 0.72, 0.98, 0.97, DarkCorner},
}};

constexpr double kBackgroundNits = 5.0;

Light PaintPoint(double x, double y, const ChartMoment& moment) {
  for (const Region& region : kRegions) {
    if (x < region.left || x >= region.right || y < region.top || y >= region.bottom) continue;
    const double shift = region.moves ? moment.shift : 0.0;
    return region.paint((x - region.left) / (region.right - region.left) - shift,
                        (y - region.top) / (region.bottom - region.top));
  }
  return Grey(kBackgroundNits);
}

}  // namespace

ColorSpace ChartPQ() {
  ColorDescription description = ColorSpaceOfName("bt2100-pq");
  if (const auto primaries = RefHost::ChromaticitiesOf(ColorSpace(description))) {
    description.masteringChromaticities = *primaries;
  }
  description.masteringMaxLuminance = static_cast<float>(kChartPeakNits);
  description.masteringMinLuminance = 0.0001F;
  return ColorSpace(description);
}

PX::VideoFrameRef RenderChart(int width, int height, int white, const ChartMoment& moment) {
  ColorDescription linear;
  linear.primaries = RefHost::kPrimariesBT2020;
  linear.transfer = RefHost::kTransferLinear;
  PX::VideoFrameRef frame = MakeFloatFrame(width, height, ColorSpace(linear));
  const FloatPixels pixels = ViewFloatPixels(frame);
  for (int y = 0; y < height; ++y) {
    float* pixel = pixels.Row(y);
    for (int x = 0; x < width; ++x, pixel += 4) {
      const Light light =
          Scaled(PaintPoint((x + 0.5) / width, (y + 0.5) / height, moment), moment.light / white);
      pixel[0] = static_cast<float>(light.blue);
      pixel[1] = static_cast<float>(light.green);
      pixel[2] = static_cast<float>(light.red);
      pixel[3] = 1.0F;
    }
  }
  return frame;
}

}  // namespace Quillon::Cli
