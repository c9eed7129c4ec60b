#include <vector>

#include <gtest/gtest.h>

#include "bench/quality/Metrics.h"
#include "curves/SdrTransfer.h"
#include "curves/St2084.h"

using namespace Quality;

namespace {

using Lights = std::vector<Light>;

constexpr double kIntensity = 0.6;  // a grey of 246 nits

Lights ColorsOf(const std::vector<Polar>& colors) {
  Lights light;
  for (const Polar& color : colors) light.push_back(LightOf(color));
  return light;
}

Light Grey(double nits) { return {nits, nits, nits}; }

Lights GreysOfCodes(const std::vector<double>& codes) {
  Lights light;
  for (const double code : codes) light.push_back(Grey(kWhiteNits * DecodeSrgb(code / 255.0)));
  return light;
}

/// Greys by their PQ signals, in delta-E ITP from 100 nits on.
Lights GreysAt(const std::vector<double>& steps) {
  Lights light;
  for (const double step : steps) {
    light.push_back(Grey(DecodeSt2084(EncodeSt2084(100.0) + step / 720.0)));
  }
  return light;
}

TEST(HueError, IsTheAngleBetweenHues) {
  const Lights source = ColorsOf({{kIntensity, 0.04, 10.0}, {kIntensity, 0.04, 170.0}});
  const Lights result = ColorsOf({{kIntensity, 0.03, 40.0}, {kIntensity, 0.06, -180.0}});
  const HueError error = MeasureHueError(source, result);
  EXPECT_NEAR(error.meanDegrees, 20.0, 1e-6);
  EXPECT_NEAR(error.maxDegrees, 30.0, 1e-6);
  EXPECT_EQ(error.pixels, 2U);
}

TEST(HueError, TakesTheShortWayRound) {
  const HueError error = MeasureHueError(ColorsOf({{kIntensity, 0.04, 175.0}}),
                                         ColorsOf({{kIntensity, 0.04, -175.0}}));
  EXPECT_NEAR(error.maxDegrees, 10.0, 1e-6);
}

TEST(HueError, LeavesOutWhatHasNoHueOnOneSide) {
  const Lights source =
      ColorsOf({{kIntensity, 0.04, 0.0}, {kIntensity, 0.019, 0.0}, {kIntensity, 0.021, 0.0}});
  const Lights result =
      ColorsOf({{kIntensity, 0.019, 90.0}, {kIntensity, 0.04, 90.0}, {kIntensity, 0.021, 5.0}});
  const HueError error = MeasureHueError(source, result);
  EXPECT_EQ(error.pixels, 1U);
  EXPECT_NEAR(error.meanDegrees, 5.0, 1e-6);
  EXPECT_EQ(MeasureHueError(Lights{Grey(100.0)}, Lights{Grey(100.0)}).pixels, 0U);
}

TEST(ChromaLost, IsTheMeanShareThatIsGone) {
  const Lights source = ColorsOf({{kIntensity, 0.04, 0.0}, {kIntensity, 0.05, 90.0}});
  const Lights result = ColorsOf({{0.5, 0.03, 20.0}, {0.5, 0.025, 90.0}});
  EXPECT_NEAR(MeasureChromaLost(source, result), 0.375, 1e-9);
}

TEST(ChromaLost, DoesNotMakeUpForLossesByWhatIsGained) {
  const Lights source = ColorsOf({{kIntensity, 0.04, 0.0}, {kIntensity, 0.04, 90.0}});
  const Lights result = ColorsOf({{kIntensity, 0.02, 0.0}, {kIntensity, 0.08, 90.0}});
  EXPECT_NEAR(MeasureChromaLost(source, result), 0.25, 1e-9);
}

TEST(ChromaLost, CountsLightFrom100To4000NitsAlone) {
  const auto color = [](double nits, double chroma) {
    return Polar{EncodeSt2084(nits), chroma, 30.0};
  };
  const Lights source =
      ColorsOf({color(99.0, 0.04), color(100.0, 0.04), color(4000.0, 0.04), color(4010.0, 0.04)});
  const Lights result =
      ColorsOf({color(99.0, 0.0), color(100.0, 0.03), color(203.0, 0.01), color(203.0, 0.0)});
  EXPECT_NEAR(MeasureChromaLost(source, result), 0.5, 1e-9);
}

TEST(ChromaLost, IsZeroWhereNothingHadAny) {
  EXPECT_EQ(MeasureChromaLost(ColorsOf({{kIntensity, 0.019, 0.0}}), Lights{Grey(200.0)}), 0.0);
}

TEST(OrderViolations, ArePixelsDarkerThanOneBefore) {
  const OrderViolations none = CountOrderViolations(GreysOfCodes({10, 20, 20, 30, 255}));
  EXPECT_EQ(none.pixels, 0U);
  const OrderViolations some = CountOrderViolations(GreysOfCodes({10, 20, 19, 18.5, 20, 21}));
  EXPECT_EQ(some.pixels, 2U);
  EXPECT_NEAR(some.worstCodes, 1.5, 1e-6);
}

TEST(OrderViolations, BeginAtATenthOfACodeValue) {
  EXPECT_EQ(CountOrderViolations(GreysOfCodes({100, 99.91})).pixels, 0U);
  EXPECT_EQ(CountOrderViolations(GreysOfCodes({100, 99.89})).pixels, 1U);
}

TEST(OrderViolations, SeeASlowDecline) {
  const OrderViolations slow = CountOrderViolations(GreysOfCodes({100, 99.95, 99.9001, 99.85}));
  EXPECT_EQ(slow.pixels, 1U);
  EXPECT_NEAR(slow.worstCodes, 0.15, 1e-6);
}

TEST(Bands, AreStepsThatTheSourceDoesNotHave) {
  const Lights source = GreysAt({0.0, 0.25, 0.5, 0.75, 1.0});
  EXPECT_EQ(CountBands(source, source), 0U);
  EXPECT_EQ(CountBands(source, GreysAt({0.0, 1.4, 1.5, 1.6, 3.0})), 0U);
  EXPECT_EQ(CountBands(source, GreysAt({0.0, 1.6, 1.7, 1.8, 0.1})), 2U);
}

TEST(Bands, AreNotTheEdgesOfTheSource) {
  EXPECT_EQ(CountBands(GreysAt({0.0, 0.6}), GreysAt({0.0, 5.0})), 0U);
  EXPECT_EQ(CountBands(GreysAt({0.0, 0.4}), GreysAt({0.0, 5.0})), 1U);
}

TEST(Clipped, AreChannelsAtAnEndWhereTheSourceChanges) {
  const auto source = [](std::initializer_list<Components> components) {
    Lights light;
    for (const Components& each : components) light.push_back(LightFrom(Gamut::BT709, each));
    return light;
  };
  const Lights changing = source({{300, 50, 10}, {310, 60, 20}});
  EXPECT_EQ(CountClipped(changing, std::vector<Signal>{{1.0, 0.5, 0.0}, {1.0, 0.6, 0.0}}), 2U);
  EXPECT_EQ(CountClipped(changing, std::vector<Signal>{{0.99, 0.5, 0.0}, {1.0, 0.6, 0.1}}), 0U);
  EXPECT_EQ(CountClipped(changing, std::vector<Signal>{{0.5, 0.5, 0.5}, {0.5, 0.5, 0.5}}), 0U);
  const Lights onTheBoundary = source({{300, 50, 0}, {300, 60, 0}});
  EXPECT_EQ(CountClipped(onTheBoundary, std::vector<Signal>{{1.0, 0.0, 0.0}, {1.0, 0.0, 0.0}}), 1U);
}

TEST(Difference, IsTheMeanAndWhatOneInTwentyExceeds) {
  std::vector<double> steps(101);
  for (std::size_t i = 0; i < steps.size(); ++i) steps[i] = static_cast<double>(i);
  const Difference difference =
      MeasureDifference(GreysAt(std::vector<double>(steps.size(), 0.0)), GreysAt(steps));
  EXPECT_NEAR(difference.mean, 50.0, 1e-6);
  EXPECT_NEAR(difference.percentile95, 95.0, 1e-6);
}

}  // namespace
