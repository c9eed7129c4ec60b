#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include <gtest/gtest.h>

#include "bench/quality/Charts.h"
#include "bench/quality/Figures.h"
#include "curves/SdrTransfer.h"
#include "curves/St2084.h"

using namespace Quality;

namespace {

const Charts& ChartsTo1000Nits() {
  static const Charts charts = MakeCharts(1000.0);
  return charts;
}

TEST(QualityCharts, HaveNoLightAboveThePeak) {
  for (const Light& light : ChartsTo1000Nits().light) {
    EXPECT_GE(std::min({light.red, light.green, light.blue}), 0.0);
    EXPECT_LE(std::max({light.red, light.green, light.blue}), 1000.0);
  }
}

TEST(QualityCharts, GoRoundTheHuesAtEachIntensityAndShare) {
  const Charts& charts = ChartsTo1000Nits();
  const auto sweep = charts.insideBt709.Of(charts.light);
  ASSERT_EQ(sweep.size(), 72U * 5 * 4);  // 20, 100, 203 and 400 nits
  std::set<long> hues;
  std::set<long> nits;
  for (const Light& light : sweep) {
    const Polar polar = PolarOf(light);
    nits.insert(std::lround(DecodeSt2084(polar.intensity)));
    hues.insert((std::lround(polar.hue) + 360) % 360);
  }
  EXPECT_EQ(nits, (std::set<long>{20, 100, 203, 400}));
  EXPECT_EQ(hues.size(), 72U);
}

TEST(QualityCharts, LieInTheirGamuts) {
  constexpr double kRounding = 1e-5;
  const Charts& charts = ChartsTo1000Nits();
  const auto least = [](Gamut gamut, const Light& light) {
    const Components components = ComponentsIn(gamut, light);
    return *std::min_element(components.begin(), components.end());
  };
  for (const Light& light : charts.insideBt709.Of(charts.light)) {
    EXPECT_GE(least(Gamut::BT709, light), -kRounding);
  }
  for (const Light& light : charts.insideP3.Of(charts.light)) {
    EXPECT_GE(least(Gamut::P3, light), -kRounding);
  }
  for (const Light& light : charts.outsideBt709.Of(charts.light)) {
    EXPECT_FALSE(IsInside(Gamut::BT709, light));
  }
  EXPECT_GT(charts.outsideBt709.count, 500U);
}

TEST(QualityCharts, HavePatchesOfTheirLuminance) {
  const Charts& charts = ChartsTo1000Nits();
  const auto patches = charts.patches.Of(charts.light);
  ASSERT_GE(patches.size(), 3U * 18);  // those of 50, 100 and 203 nits lie below the peak
  for (std::size_t i = 0; i < 3 * 18; i += 18) {
    const Light darkSkin = LightOfxyY(0.4059, 0.3604, std::array{50.0, 100.0, 203.0}[i / 18]);
    EXPECT_EQ(patches[i].red, darkSkin.red);
    EXPECT_EQ(patches[i].green, darkSkin.green);
    EXPECT_EQ(patches[i].blue, darkSkin.blue);
  }
}

TEST(QualityCharts, RampFromDarkToThePeakInSmallSteps) {
  const Charts& charts = ChartsTo1000Nits();
  ASSERT_EQ(charts.rampsInside.size(), 1U + 2 * 12);
  ASSERT_EQ(charts.rampsOutside.size(), 2U * 12);
  std::vector<Part> ramps = charts.rampsInside;
  ramps.insert(ramps.end(), charts.rampsOutside.begin(), charts.rampsOutside.end());
  for (const Part& part : ramps) {
    const auto ramp = part.Of(charts.light);
    EXPECT_NEAR(DecodeSt2084(ItpOf(ramp.front()).i), 0.1, 1e-6);
    EXPECT_NEAR(DecodeSt2084(ItpOf(ramp.back()).i), 1000.0, 1e-6);
    for (std::size_t i = 1; i < ramp.size(); ++i) {
      const double step = 720.0 * (ItpOf(ramp[i]).i - ItpOf(ramp[i - 1]).i);
      EXPECT_GT(step, 0.0);
      EXPECT_LT(step, 0.26);
    }
  }
  for (std::size_t i = 1; i < charts.rampsInside.size(); i += 2) {
    constexpr std::size_t kAmid = 500;
    const Polar half = PolarOf(charts.rampsInside[i].Of(charts.light)[kAmid]);
    const Polar whole = PolarOf(charts.rampsInside[i + 1].Of(charts.light)[kAmid]);
    EXPECT_NEAR(half.hue, whole.hue, 1e-3);
    EXPECT_NEAR(half.chroma, 0.5 * whole.chroma, 1e-6);
  }
  for (const Light& light : charts.rampsInside.front().Of(charts.light)) {
    EXPECT_LT(PolarOf(light).chroma, 1e-9);
  }
}

/// Shows what a display can and clips the rest.
std::vector<Signal> Clip(const std::vector<Light>& light) {
  std::vector<Signal> signals;
  for (const Light& each : light) {
    const Components components = ComponentsIn(Gamut::BT709, each);
    const auto code = [](double nits) {
      return std::clamp(EncodeSrgb(nits / kWhiteNits), 0.0, 1.0);
    };
    signals.push_back({code(components[0]), code(components[1]), code(components[2])});
  }
  return signals;
}

TEST(QualityFigures, FindNothingWhereTheDisplayShowsAll) {
  const Charts charts = MakeCharts(120.0);  // no BT.709 component is above white
  const Figures figures = Measure(charts, Clip(charts.light));
  EXPECT_NEAR(figures.insideBt709.hue.maxDegrees, 0.0, 1e-3);
  EXPECT_NEAR(figures.insideBt709.chromaLost, 0.0, 1e-6);
  EXPECT_EQ(figures.rampsInside.order.pixels, 0U);
  EXPECT_EQ(figures.rampsInside.bands, 0U);
  EXPECT_EQ(figures.rampsInside.clippedShare, 0.0);
  EXPECT_GT(figures.rampsOutside.clippedShare, 0.2);
  EXPECT_GT(figures.outsideBt709.hue.maxDegrees, 5.0);
  EXPECT_GT(figures.outsideBt709.chromaLost, 0.05);
}

TEST(QualityFigures, FindTheHueAndChromaThatClippingCosts) {
  const Charts& charts = ChartsTo1000Nits();
  const Figures figures = Measure(charts, Clip(charts.light));
  EXPECT_GT(figures.insideBt709.hue.maxDegrees, 20.0);
  EXPECT_GT(figures.insideBt709.chromaLost, 0.2);
  EXPECT_GT(figures.rampsInside.clippedShare, 0.1);
}

TEST(QualityFigures, AreOfEachGroupByItself) {
  const Charts& charts = ChartsTo1000Nits();
  const std::vector<Signal> result = Clip(charts.light);
  const std::vector<Light> shown = ShownBy(result);
  const Figures figures = Measure(charts, result);
  for (const auto& [part, colors] : {std::pair{charts.insideBt709, figures.insideBt709},
                                     std::pair{charts.insideP3, figures.insideP3},
                                     std::pair{charts.outsideBt709, figures.outsideBt709},
                                     std::pair{charts.patches, figures.patches}}) {
    const auto source = part.Of(charts.light);
    EXPECT_EQ(colors.hue, MeasureHueError(source, part.Of(shown)));
    EXPECT_EQ(colors.chromaLost, MeasureChromaLost(source, part.Of(shown)));
    EXPECT_GT(colors.hue.pixels, 50U);
  }
}

TEST(QualityFigures, CountAllRamps) {
  const Charts& charts = ChartsTo1000Nits();
  std::vector<Signal> result = Clip(charts.light);
  const Figures before = Measure(charts, result);
  // A dark pixel amid each of two ramps: two order violations; four bands.
  for (const std::size_t ramp : {0U, 7U}) {
    const Part& part = charts.rampsInside[ramp];
    result[part.first + part.count / 2] = {};
  }
  const Figures after = Measure(charts, result);
  EXPECT_EQ(after.rampsInside.order.pixels, before.rampsInside.order.pixels + 2);
  EXPECT_EQ(after.rampsInside.bands, before.rampsInside.bands + 4);
  EXPECT_GT(after.rampsInside.order.worstCodes, 10.0);
  EXPECT_EQ(after.rampsOutside, before.rampsOutside);
}

}  // namespace
