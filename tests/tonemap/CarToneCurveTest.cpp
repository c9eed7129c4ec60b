#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/tonemap/CurveTest.h"
#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/CarToneCurve.h"

namespace {

using orvmediatypes::color::ColorSpace;
using testing::ElementsAre;
using tonemap::Controls;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::kNaN;
using tonemap::Pixel;

class CarParams : public tonemap::ToneMapTest {
 protected:
  void Build(float knee) {
    Quillon::GetCARToneCurveSupportParams(settings.destinationColorSpace,
                                          settings.colorManagementSettings, knee, params);
  }

  /// Entry of the tables that the parameters hold.
  static void ExpectEntry(const Quillon::SupportVector& params, std::size_t index) {
    EXPECT_EQ(params.at(1), Quillon::GetCarTables().a[index]);
    EXPECT_EQ(params.at(2), Quillon::GetCarTables().b[index]);
  }
};

TEST_F(CarParams, AreKneePointCoefficientsPeakAndWeights) {
  host.results.convertSignalToLinear = [](const ColorSpace&, float) { return 4.0F; };
  Build(0.5F);
  ASSERT_EQ(params.size(), 7U);
  EXPECT_EQ(params[0], 4.0F * (0.5F * 0.995F + 0.005F));
  ExpectEntry(params, 63);  // floor(0.4975 x 128)
  EXPECT_EQ(params[3], 4.0F);
  EXPECT_THAT(std::vector<float>(params.begin() + 4, params.end()),
              ElementsAre(0.25F, 0.5F, 0.125F));
  EXPECT_THAT(host.Calls(),
              ElementsAre("PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData("
                          "1/1, -1)",
                          "CHR::ConvertSignalToLinearValue(1/1, white 100, 1)",
                          "CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(CarParams, ReadTheFirstEntryForKnee0AndTheLastForKnee1) {
  Build(0.0F);
  EXPECT_EQ(params[0], 0.005F);
  ExpectEntry(params, 0);
  Build(1.0F);
  EXPECT_EQ(params[0], 1.0F);
  ExpectEntry(params, 127);
}

TEST_F(CarParams, TakeATinyKneePointWhenTheKneeIsNotPositive) {
  for (const float knee : {-0.01F, -1.0F, -std::numeric_limits<float>::infinity(), std::nanf("")}) {
    Build(knee);
    EXPECT_EQ(params[0], 1e-15F) << knee;
    ExpectEntry(params, 0);
  }
}

TEST_F(CarParams, StayInsideTheTablesForAnyKnee) {
  for (const float knee :
       {1.5F, 1e30F, std::numeric_limits<float>::max(), std::numeric_limits<float>::infinity()}) {
    Build(knee);
    ExpectEntry(params, 127);
  }
}

TEST_F(CarParams, UseTheRecordsOwnColorManagementInEveryVersion) {
  settings.controls.version = 2;
  SetAlgorithm(6);
  Quillon::GetCARToneCurveSupportParams(settings, params);
  EXPECT_THAT(host.CallsTo({"CHR::Convert", "CHR::GetColor"}),
              testing::Each(testing::HasSubstr("white 100")));
}

TEST(CarTables, AreBuiltOnce) { EXPECT_EQ(&Quillon::GetCarTables(), &Quillon::GetCarTables()); }

TEST(CarTables, FollowTheirFormulaInDoublePrecision) {
  const Quillon::CarTables& tables = Quillon::GetCarTables();
  const double p = std::pow(100.0, 1.25);
  for (std::size_t n = 0; n < Quillon::kCarTableSize; ++n) {
    const double x = std::min(1.0, 0.005 + static_cast<double>(n) * 0.0077734375);
    const double power = std::pow(x, 1.25);
    EXPECT_NEAR(tables.a[n], (power * p * x - power * p) / ((power - p) * x), 1e-5) << n;
    EXPECT_NEAR(tables.b[n], (p * x - power) / ((p - power) * x), 1e-5) << n;
  }
}

struct Car {
  float knee = 0.5F;
  float a = 1.0F;
  float b = 1.0F;
  float destinationPeak = 1.0F;
};

/// With colour fully preserved, so that the curve is all that happens, unless said otherwise.
Pixel MapPixel(const Pixel& pixel, const Car& car,
               const Controls& controls = {.peak = 100.0F, .preservation = 1.0F}) {
  const Quillon::SupportVector params = {car.knee, car.a, car.b, car.destinationPeak,
                                         0.25F,    0.5F,  0.125F};
  return tonemap::Map<Quillon::CARToneMap>(pixel, params, controls);
}

TEST(CarCurve, AppliesTheGainAloneToAPixelAtTheKnee) {
  ExpectBits(MapPixel({0.5F, 0.25F, -0.125F, 1.0F}, {.knee = 1.0F}, {.peak = 100.0F, .gain = 2.0F}),
             {1.0F, 0.5F, -0.25F, 1.0F});
}

TEST(CarCurve, AsksForNoRatioAtTheKnee) {
  ExpectBits(MapPixel({1.0F, 0.5F, -0.25F, 1.0F}, {.knee = 1.0F, .destinationPeak = kNaN}),
             {1.0F, 0.5F, -0.25F, 1.0F});
}

TEST(CarCurve, AppliesTheGainAloneToAPixelBelowTheKnee) {
  ExpectBits(MapPixel({0.25F, 0.0F, -8.0F, 1.0F}, {.knee = 1.0F}, {.peak = 100.0F, .gain = 2.0F}),
             {0.5F, 0.0F, -16.0F, 1.0F});
}

TEST(CarCurve, ScalesAllChannelsByTheRatioOfTheLargest) {
  // Distance 1: 1 x 0.5 / ((1 + 1 + 0.5) - 0.5) + 0.5 = 0.75, half of 1.5.
  ExpectWithinUlps(MapPixel({1.5F, 0.75F, -0.375F, 1.0F}, {}), {0.75F, 0.375F, -0.1875F, 1.0F});
}

TEST(CarCurve, MeasuresTheKneeAgainst1WhateverTheDestinationsPeak) {
  // 1 x 1.5 / ((1 + 1 + 1.5) - 0.5) + 0.5 = 1, two thirds of 1.5.
  ExpectWithinUlps(MapPixel({0.75F, 1.5F, 0.375F, 1.0F}, {.destinationPeak = 2.0F}),
                   {0.5F, 1.0F, 0.25F, 1.0F});
}

TEST(CarCurve, RaisesTheDistanceToThePowerOf125) {
  // 16 becomes 32: 32 / ((32 + 31 + 1) - 0) + 1 = 1.5.
  EXPECT_FLOAT_EQ(
      MapPixel({0.0F, 0.0F, 17.0F, 1.0F}, {.knee = 1.0F, .a = 31.0F, .destinationPeak = 2.0F})[2],
      1.5F);
}

TEST(CarCurve, TendsToThePeakFarAboveTheKnee) {
  // (P - K) / B + K = 1: the ratio falls as one over the light.
  for (const float light : {1e6F, 1e12F, 1e24F}) {
    const Pixel pixel =
        MapPixel({light, light / 2.0F, 0.0F, 1.0F}, {}, {.peak = 1e30F, .preservation = 1.0F});
    EXPECT_NEAR(pixel[0], 1.0F, 1e-6F) << light;
    EXPECT_NEAR(pixel[1], 0.5F, 1e-6F) << light;
  }
}

TEST(CarCurve, NeverBrightens) {
  // 1 x 1.5 / ((0 + 0 + 1.5) - 0.5) + 0.5 = 2 would be more than 1.5.
  ExpectBits(MapPixel({1.5F, 0.75F, 0.375F, 1.0F}, {.a = 0.0F, .b = 0.0F, .destinationPeak = 2.0F}),
             {1.5F, 0.75F, 0.375F, 1.0F});
}

TEST(CarCurve, TakesANegativeRatioFor0) {
  // A destination's peak below the knee: 1 x -0.5 / ((1 + 0.5 - 0.5) - 0.5) + 0.5 = -0.5.
  ExpectBits(MapPixel({1.5F, 0.75F, 0.0F, 1.0F}, {.a = 0.5F, .destinationPeak = 0.0F}),
             {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(CarCurve, LetsARatioThatIsNaNPass) {
  const Pixel pixel = MapPixel({1.5F, 0.75F, 0.375F, 0.25F}, {.destinationPeak = kNaN});
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], 0.25F);
}

TEST(CarCurve, KeepsPixelsWithoutLightThatLieAboveANegativeKnee) {
  for (const float largest : {-0.25F, 0.0F}) {
    const Pixel pixel = {-0.5F, largest, -0.75F, 1.0F};
    const Quillon::SupportVector params = {-1.0F, 1.0F, 1.0F, 1.0F, 0.0F, 0.0F, 0.0F};
    ExpectBits(
        tonemap::Map<Quillon::CARToneMap>(pixel, params, {.peak = 3.0F, .preservation = 1.0F}),
        pixel);
  }
}

TEST(CarCurve, CompressesWhatTheDesaturationLeft) {
  // At the peak the pixel is grey of its luminance, 0.125 x 12 = 1.5, before the curve halves it.
  ExpectWithinUlps(MapPixel({12.0F, 0.0F, 0.0F, 1.0F}, {}, {.peak = 12.0F}),
                   {0.75F, 0.75F, 0.75F, 1.0F});
}

TEST(CarCurve, StopsWhenTheDesaturationLedBelowTheKnee) {
  ExpectWithinUlps(MapPixel({2.0F, 0.0F, 0.0F, 1.0F}, {}, {.peak = 2.0F}),
                   {0.25F, 0.25F, 0.25F, 1.0F});
}

TEST(CarCurve, LooksPastANaNThatIsNotTheFirstChannel) {
  // Above the knee the luminance is not a number, and with it the whole pixel.
  const Pixel above = MapPixel({1.5F, kNaN, 0.75F, 1.0F}, {});
  EXPECT_TRUE(std::isnan(above[0]) && std::isnan(above[1]) && std::isnan(above[2]));
  const Pixel below = MapPixel({0.5F, kNaN, 0.25F, 1.0F}, {});
  EXPECT_EQ(below[0], 0.5F);
  EXPECT_TRUE(std::isnan(below[1]));
  EXPECT_EQ(below[2], 0.25F);
}

TEST(CarCurve, TakesANaNInTheFirstChannelForNoHighlight) {
  const Pixel pixel = MapPixel({kNaN, 8.0F, 4.0F, 1.0F}, {});
  EXPECT_TRUE(std::isnan(pixel[0]));
  EXPECT_EQ(pixel[1], 8.0F);
  EXPECT_EQ(pixel[2], 4.0F);
}

TEST(CarCurve, WritesOnlyColorsWhateverTheyAre) {
  const Quillon::SupportVector params = {0.5F, 0.2F, 0.99F, 1.0F, 0.25F, 0.5F, 0.125F};
  const auto settings = tonemap::SettingsOf({.peak = 100.0F, .gain = 2.0F, .preservation = 0.5F});
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::CARToneMap{}(pixel, params, settings); });
}

}  // namespace
