#include <cmath>

#include "tests/tonemap/CurveTest.h"
#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/Bt2446A.h"

namespace {

using orvmediatypes::color::ColorSpace;
using testing::ElementsAre;
using tonemap::Controls;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::kInfinity;
using tonemap::kNaN;
using tonemap::Pixel;

class Bt2446AParams : public tonemap::ToneMapTest {
 protected:
  void SetUp() override {
    ToneMapTest::SetUp();
    SetAlgorithm(4);
    settings.controls.peak = 1000.0F;
  }

  void Build() { Quillon::GetITU2446ASupportParams(settings, params); }

  static float Rho(float nits) { return 1.0F + 32.0F * std::pow(nits * 0.0001F, 0.4166F); }

  void ExpectParams(float hdrPeak, float sdrPeak, float white) {
    ASSERT_EQ(params.size(), 4U);
    EXPECT_FLOAT_EQ(params[0], Rho(hdrPeak));
    EXPECT_FLOAT_EQ(params[1], Rho(sdrPeak));
    EXPECT_FLOAT_EQ(params[2], std::pow(hdrPeak / sdrPeak, 0.4166F) * (white / hdrPeak));
    EXPECT_FLOAT_EQ(params[3], sdrPeak / white);
  }
};

TEST_F(Bt2446AParams, TakeTheDestinationsPeakWhereItIsKnown) {
  host.results.peakLuminance = 250;
  Build();
  ExpectParams(1000.0F, 250.0F, 100.0F);
  EXPECT_THAT(
      host.CallsTo({"CHR::", "PX::ColorSpaceUtils", "ColorManagement"}),
      ElementsAre("PX::ColorSpaceUtils::IsSDRColorSpace(1/1)",
                  "ColorManagementSettings::GetGraphicsWhiteLuminance(white 100)",
                  "CHR::AreColorSpacesEquivalent(1/1, BGra, 9/16, BGra, 2)",
                  "CHR::ConvertFrame([1 1 1 1], in place, 1, 1, 1/1, BGra, 16, 9/16, BGra, 16, "
                  "white 100)",
                  "PX::ColorSpaceUtils::GetPeakLuminance(1/1)"));
}

TEST_F(Bt2446AParams, TakeFullScaleTimesReferenceWhiteWhereItIsNot) {
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[0] = 0.5F; };
  host.results.convertSignalToLinear = [](const ColorSpace&, float signal) { return signal * 6; };
  Build();
  ExpectParams(1000.0F, 300.0F, 100.0F);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignal"}),
              ElementsAre("CHR::ConvertSignalToLinearValue(9/16, white 100, 0.5)"));
}

TEST_F(Bt2446AParams, IgnoreAFailedConversion) {
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[0] = 0.5F; };
  host.FailWithCode("CHR::ConvertFrame", -1);
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignal"}),
              ElementsAre("CHR::ConvertSignalToLinearValue(9/16, white 100, 1)"));
  ExpectParams(1000.0F, 100.0F, 100.0F);
}

TEST_F(Bt2446AParams, ConvertNothingForAPQDestination) {
  SetDestination(scripted::kPQ);
  Build();
  EXPECT_TRUE(host.CallsTo({"CHR::ConvertFrame"}).empty());
  ExpectParams(1000.0F, 100.0F, 100.0F);
}

TEST_F(Bt2446AParams, TakeAReferenceWhiteOf1ForADestinationNeitherSDRNorHDR) {
  SetDestination(scripted::kLinear709);
  host.results.peakLuminance = 250;
  Build();
  ExpectParams(1000.0F, 250.0F, 1.0F);
}

TEST_F(Bt2446AParams, UseTheRecordsOwnColorManagementInEveryVersion) {
  settings.controls.version = 2;
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::Convert", "ColorManagement"}),
              testing::Each(testing::HasSubstr("white 100")));
}

/// rho of 10000 nits, a plain rho for the SDR peak, and scales of 1.
const Quillon::SupportVector kParams = {33.0F, 8.0F, 1.0F, 1.0F};

Pixel MapPixel(const Pixel& pixel, const Controls& controls,
               const Quillon::SupportVector& params = kParams) {
  return tonemap::Map<Quillon::Bt2446AToneMap>(pixel, params, controls);
}

/// Light of Ep = 0.85 and what the curve makes of it, Yc = 0.9021374.
constexpr float kLight = 0.269486785F;
constexpr float kMapped = 0.567195773F;

/// The curve subtracts: a step of one of its powers may come to twenty in the end.
void ExpectNear(float actual, float expected) { EXPECT_NEAR(actual, expected, 5e-6F * expected); }

/// One channel through the curve alone.
float MapChannel(float value) { return MapPixel({value, 0.0F, 0.0F, 1.0F}, {})[0]; }

TEST(Bt2446ACurve, KeepsBlackBlack) {
  for (const float preservation : {0.0F, 0.5F, 1.0F}) {
    ExpectBits(MapPixel({0.0F, 0.0F, 0.0F, 0.5F}, {.preservation = preservation}),
               {0.0F, 0.0F, 0.0F, 0.5F});
  }
}

TEST(Bt2446ACurve, TakesNegativeChannelsFor0) {
  ExpectBits(MapPixel({-1.0F, -1e-30F, -1000.0F, 1.0F}, {}), {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(Bt2446ACurve, ScalesANegativeChannelWithItsPixelWhenColorIsPreserved) {
  // The curve's share of it is 0; the other share keeps the ratio to the largest channel.
  ExpectWithinUlps(MapPixel({-1.0F, 2.0F, 1.0F, 1.0F}, {.preservation = 1.0F}),
                   {-0.5F, 1.0F, 0.5F, 1.0F});
  EXPECT_FLOAT_EQ(MapPixel({-1.0F, 2.0F, 1.0F, 1.0F}, {.preservation = 0.5F})[0], -0.25F);
}

TEST(Bt2446ACurve, TakesNegativeZeroForBlack) { EXPECT_EQ(MapChannel(-0.0F), 0.0F); }

TEST(Bt2446ACurve, MapsTheHDRPeakOntoTheSDRPeak) {
  // Ep is exactly 1, which the line still covers.
  Quillon::SupportVector params = kParams;
  params[3] = 2.5F;
  EXPECT_FLOAT_EQ(MapPixel({1.0F, 0.0F, 0.0F, 1.0F}, {}, params)[0], 2.5F);
}

TEST(Bt2446ACurve, MapsWhatLiesAboveTheHDRPeakOntoTheSDRPeak) {
  for (const float value : {1.0001F, 2.0F, 1e6F, std::numeric_limits<float>::max()}) {
    EXPECT_FLOAT_EQ(MapChannel(value), 1.0F) << value;
  }
}

TEST(Bt2446ACurve, BeginsWithALineOf1077) {
  // Ep = 0.1, Yc = 0.1077, and Ep = 0.5, Yc = 0.5385.
  ExpectNear(MapChannel(3.01415166e-05F), 3.39662074e-04F);
  ExpectNear(MapChannel(0.0102374656F), 0.0533528551F);
}

TEST(Bt2446ACurve, LeavesTheLineForTheParabolaAt07399) {
  // Ep = 0.7398, Yc = 0.7967646, and Ep = 0.74, Yc = 0.7975264: the curve jumps in between.
  ExpectNear(MapChannel(0.100478172F), 0.300671279F);
  ExpectNear(MapChannel(0.100660719F), 0.302086711F);
}

TEST(Bt2446ACurve, FollowsTheParabola) {
  // Ep = 0.85, Yc = 0.9021374.
  ExpectNear(MapChannel(kLight), kMapped);
}

TEST(Bt2446ACurve, LeavesTheParabolaForTheUpperLineAt09909) {
  // Ep = 0.9908, Yc = 0.9953948; Ep = 0.991, Yc = 0.9955; Ep = 0.995, Yc = 0.9975.
  ExpectNear(MapChannel(0.923422217F), 0.974058867F);
  ExpectNear(MapChannel(0.925023735F), 0.974643409F);
  ExpectNear(MapChannel(0.957635462F), 0.985836923F);
}

TEST(Bt2446ACurve, MapsEachChannelOnItsOwnWithoutColorPreservation) {
  // The same light in another channel's company comes to the same.
  const Pixel pixel = MapPixel({kLight, 0.0102374656F, 1.0F, 1.0F}, {});
  ExpectNear(pixel[0], kMapped);
  ExpectNear(pixel[1], 0.0533528551F);
  ExpectNear(pixel[2], 1.0F);
}

TEST(Bt2446ACurve, KeepsTheRatiosWhenColorIsFullyPreserved) {
  const Pixel pixel = MapPixel({kLight, kLight / 2.0F, 0.0F, 1.0F}, {.preservation = 1.0F});
  ExpectNear(pixel[0], kMapped);
  EXPECT_FLOAT_EQ(pixel[1], pixel[0] / 2.0F);
  EXPECT_EQ(pixel[2], 0.0F);
}

TEST(Bt2446ACurve, MultipliesTheInputScaleWithTheGainFirst) {
  // 1e30 x (1e20 x 1e-30) = 1e20. 1e30 x 1e20 alone is beyond single precision.
  const Quillon::SupportVector params = {33.0F, 8.0F, 1e20F, 1.0F};
  ExpectWithinUlps(
      MapPixel({1e30F, 5e29F, 0.0F, 1.0F}, {.gain = 1e-30F, .preservation = 1.0F}, params),
      {1.0F, 0.5F, 0.0F, 1.0F});
}

TEST(Bt2446ACurve, LosesNothingToASmallInputScaleThatTheGainMakesUpFor) {
  // 3.014e-13 x (1e-30 x 1e38), the light of Ep = 0.1. 3.014e-13 x 1e-30 alone is a subnormal
  // number of eight bits, wrong by one part in 2500.
  const Quillon::SupportVector params = {33.0F, 8.0F, 1e-30F, 1.0F};
  EXPECT_NEAR(MapPixel({3.01415166e-13F, 0.0F, 0.0F, 1.0F}, {.gain = 1e38F}, params)[0],
              3.39662074e-04F, 3e-9F);
}

TEST(Bt2446ACurve, TakesMinusInfinityForTheBrightestLight) {
  // Its power is plus infinity: the channel's curve gives 1, which the others share in. Largest
  // channel 0.5: 1 / 0.5 x 0.25 = 0.5.
  const Pixel pixel = MapPixel({-kInfinity, 0.5F, 0.25F, 0.75F}, {.preservation = 1.0F});
  EXPECT_EQ(pixel[0], -kInfinity);
  EXPECT_FLOAT_EQ(pixel[1], 1.0F);
  EXPECT_FLOAT_EQ(pixel[2], 0.5F);
  EXPECT_EQ(pixel[3], 0.75F);
}

TEST(Bt2446ACurve, TakesFiniteNegativeLightForBlackWhereMinusInfinityIsTheBrightest) {
  // The largest channel's own curve value at 0.269 is what the pixel is scaled by.
  const float lowest = std::numeric_limits<float>::lowest();
  const Pixel pixel = MapPixel({lowest, kLight, 0.0F, 1.0F}, {.preservation = 1.0F});
  ExpectNear(pixel[1], kMapped);
}

TEST(Bt2446ACurve, GivesNaNForInfiniteLightAndTheOthersTheirOwn) {
  const Pixel pixel = MapPixel({kLight, kInfinity, 0.0F, 0.75F}, {.preservation = 0.5F});
  ExpectNear(pixel[0], kMapped / 2.0F);
  EXPECT_TRUE(std::isnan(pixel[1]));
  EXPECT_EQ(pixel[2], 0.0F);
  EXPECT_EQ(pixel[3], 0.75F);
}

TEST(Bt2446ACurve, LetsNaNPassTheFloorOfTheLargestChannel) {
  // A first channel that is NaN is the largest. A floor that swallowed it would leave the others
  // huge but numbers.
  const Pixel pixel = MapPixel({kNaN, 0.5F, 0.25F, 0.75F}, {.preservation = 0.5F});
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], 0.75F);
}

TEST(Bt2446ACurve, KeepsANaNThatIsNotFirstToItsOwnChannel) {
  const Pixel pixel = MapPixel({kLight, kNaN, kLight, 0.75F}, {.preservation = 0.5F});
  ExpectNear(pixel[0], kMapped);
  EXPECT_TRUE(std::isnan(pixel[1]));
  ExpectNear(pixel[2], kMapped);
}

TEST(Bt2446ACurve, WritesOnlyColorsWhateverTheyAre) {
  const auto settings = tonemap::SettingsOf({.gain = 2.0F, .preservation = 0.5F});
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::Bt2446AToneMap{}(pixel, kParams, settings); });
}

}  // namespace
