#include "bench/quality/Charts.h"

#include <algorithm>
#include <array>
#include <utility>

#include "curves/St2084.h"

namespace Quality {

namespace {

constexpr std::array kSweepNits = {20.0, 100.0, 203.0, 400.0, 1000.0, 2000.0, 4000.0};
constexpr std::array kShares = {0.2, 0.4, 0.6, 0.8, 1.0};
constexpr int kSweepDegrees = 5;

constexpr std::array kPatchNits = {50.0, 100.0, 203.0, 400.0, 1000.0};

struct Chromaticity {
  double x;
  double y;
};

/// Patches of the ColorChecker Classic: its maker's CIE Lab values for D50 (charts made since
/// November 2014), adapted to D65 by the Bradford transform.
constexpr std::array<Chromaticity, 18> kPatches = {{
    {0.4059, 0.3604},  // dark skin
    {0.3895, 0.3520},  // light skin
    {0.2469, 0.2631},  // blue sky
    {0.3453, 0.4336},  // foliage
    {0.2703, 0.2531},  // blue flower
    {0.2583, 0.3553},  // bluish green
    {0.5087, 0.4030},  // orange
    {0.2086, 0.1806},  // purplish blue
    {0.4717, 0.3107},  // moderate red
    {0.2965, 0.2206},  // purple
    {0.3760, 0.5003},  // yellow green
    {0.4743, 0.4445},  // orange yellow
    {0.1867, 0.1431},  // blue
    {0.2978, 0.4938},  // green
    {0.5382, 0.3261},  // red
    {0.4490, 0.4787},  // yellow
    {0.3801, 0.2413},  // magenta
    {0.1896, 0.2628},  // cyan
}};

constexpr double kRampFromNits = 0.1;
constexpr double kRampStep = 0.25 / 720.0;
constexpr int kRampDegrees = 30;
constexpr std::array<std::pair<Gamut, double>, 4> kRampChromas = {
    {{Gamut::BT709, 0.5}, {Gamut::BT709, 1.0}, {Gamut::P3, 1.0}, {Gamut::BT2020, 1.0}}};

using Lights = std::vector<Light>;

Light AtShare(Gamut gamut, double share, double intensity, double hue, double peakNits) {
  Light light = LightOf({intensity, share * BoundaryChroma(gamut, intensity, hue, peakNits), hue});
  // What the boundary's own rounding leaves over.
  for (double* value : {&light.red, &light.green, &light.blue}) {
    *value = std::clamp(*value, 0.0, peakNits);
  }
  return light;
}

Lights Sweep(Gamut gamut, std::span<const double> shares, double peakNits) {
  Lights sweep;
  for (const double nits : kSweepNits) {
    if (nits >= peakNits) break;
    for (const double share : shares) {
      for (int hue = -180; hue < 180; hue += kSweepDegrees) {
        sweep.push_back(AtShare(gamut, share, EncodeSt2084(nits), hue, peakNits));
      }
    }
  }
  return sweep;
}

Lights OutsideBt709(Lights sweep) {
  std::erase_if(sweep, [](const Light& light) {
    const Components components = ComponentsIn(Gamut::BT709, light);
    const auto [least, largest] = std::minmax_element(components.begin(), components.end());
    constexpr double kOnTheBoundary = 1e-6;
    return *least > -kOnTheBoundary * *largest;
  });
  return sweep;
}

Lights Patches(double peakNits) {
  Lights patches;
  for (const double nits : kPatchNits) {
    for (const auto& [x, y] : kPatches) {
      const Light light = LightOfxyY(x, y, nits);
      if (std::max({light.red, light.green, light.blue}) <= peakNits) patches.push_back(light);
    }
  }
  return patches;
}

Lights Ramp(Gamut gamut, double share, double hue, double peakNits) {
  Lights ramp;
  const double last = EncodeSt2084(peakNits);
  for (double intensity = EncodeSt2084(kRampFromNits); intensity < last; intensity += kRampStep) {
    ramp.push_back(AtShare(gamut, share, intensity, hue, peakNits));
  }
  ramp.push_back({peakNits, peakNits, peakNits});
  return ramp;
}

Part Append(Lights& all, const Lights& more) {
  const Part part{all.size(), more.size()};
  all.insert(all.end(), more.begin(), more.end());
  return part;
}

}  // namespace

Charts MakeCharts(double peakNits) {
  Charts charts;
  charts.peakNits = peakNits;
  const Lights p3 = Sweep(Gamut::P3, kShares, peakNits);
  Lights wide = Sweep(Gamut::BT2020, std::array{1.0}, peakNits);
  wide.insert(wide.end(), p3.begin(), p3.end());

  charts.insideBt709 = Append(charts.light, Sweep(Gamut::BT709, kShares, peakNits));
  charts.insideP3 = Append(charts.light, p3);
  charts.outsideBt709 = Append(charts.light, OutsideBt709(std::move(wide)));
  charts.patches = Append(charts.light, Patches(peakNits));
  charts.ramps.push_back(Append(charts.light, Ramp(Gamut::BT709, 0.0, 0.0, peakNits)));
  for (const auto& [gamut, share] : kRampChromas) {
    for (int hue = -180; hue < 180; hue += kRampDegrees) {
      charts.ramps.push_back(Append(charts.light, Ramp(gamut, share, hue, peakNits)));
    }
  }
  return charts;
}

}  // namespace Quality
