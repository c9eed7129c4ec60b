#include <cmath>

#include "tests/tonemap/CurveTest.h"
#include "tonemap/CarToneCurve.h"

namespace {

using tonemap::Controls;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::kNaN;
using tonemap::Pixel;

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

TEST(CarEdgeCases, AppliesTheGainAloneToAPixelAtTheKnee) {
  ExpectBits(MapPixel({0.5F, 0.25F, -0.125F, 1.0F}, {.knee = 1.0F}, {.peak = 100.0F, .gain = 2.0F}),
             {1.0F, 0.5F, -0.25F, 1.0F});
}

TEST(CarEdgeCases, AsksForNoRatioAtTheKnee) {
  ExpectBits(MapPixel({1.0F, 0.5F, -0.25F, 1.0F}, {.knee = 1.0F, .destinationPeak = kNaN}),
             {1.0F, 0.5F, -0.25F, 1.0F});
}

TEST(CarEdgeCases, AppliesTheGainAloneToAPixelBelowTheKnee) {
  ExpectBits(MapPixel({0.25F, 0.0F, -8.0F, 1.0F}, {.knee = 1.0F}, {.peak = 100.0F, .gain = 2.0F}),
             {0.5F, 0.0F, -16.0F, 1.0F});
}

TEST(CarEdgeCases, ScalesAllChannelsByTheRatioOfTheLargest) {
  // Distance 1: 1 x 0.5 / ((1 + 1 + 0.5) - 0.5) + 0.5 = 0.75, half of 1.5.
  ExpectWithinUlps(MapPixel({1.5F, 0.75F, -0.375F, 1.0F}, {}), {0.75F, 0.375F, -0.1875F, 1.0F});
}

TEST(CarEdgeCases, MeasuresTheKneeAgainst1WhateverTheDestinationsPeak) {
  // 1 x 1.5 / ((1 + 1 + 1.5) - 0.5) + 0.5 = 1, two thirds of 1.5.
  ExpectWithinUlps(MapPixel({0.75F, 1.5F, 0.375F, 1.0F}, {.destinationPeak = 2.0F}),
                   {0.5F, 1.0F, 0.25F, 1.0F});
}

TEST(CarEdgeCases, RaisesTheDistanceToThePowerOf125) {
  // 16 becomes 32: 32 / ((32 + 31 + 1) - 0) + 1 = 1.5.
  EXPECT_FLOAT_EQ(
      MapPixel({0.0F, 0.0F, 17.0F, 1.0F}, {.knee = 1.0F, .a = 31.0F, .destinationPeak = 2.0F})[2],
      1.5F);
}

TEST(CarEdgeCases, TendsToThePeakFarAboveTheKnee) {
  // (P - K) / B + K = 1: the ratio falls as one over the light.
  for (const float light : {1e6F, 1e12F, 1e24F}) {
    const Pixel pixel =
        MapPixel({light, light / 2.0F, 0.0F, 1.0F}, {}, {.peak = 1e30F, .preservation = 1.0F});
    EXPECT_NEAR(pixel[0], 1.0F, 1e-6F) << light;
    EXPECT_NEAR(pixel[1], 0.5F, 1e-6F) << light;
  }
}

TEST(CarEdgeCases, NeverBrightens) {
  // 1 x 1.5 / ((0 + 0 + 1.5) - 0.5) + 0.5 = 2 would be more than 1.5.
  ExpectBits(MapPixel({1.5F, 0.75F, 0.375F, 1.0F}, {.a = 0.0F, .b = 0.0F, .destinationPeak = 2.0F}),
             {1.5F, 0.75F, 0.375F, 1.0F});
}

TEST(CarEdgeCases, TakesANegativeRatioFor0) {
  // A destination's peak below the knee: 1 x -0.5 / ((1 + 0.5 - 0.5) - 0.5) + 0.5 = -0.5.
  ExpectBits(MapPixel({1.5F, 0.75F, 0.0F, 1.0F}, {.a = 0.5F, .destinationPeak = 0.0F}),
             {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(CarEdgeCases, LetsARatioThatIsNaNPass) {
  const Pixel pixel = MapPixel({1.5F, 0.75F, 0.375F, 0.25F}, {.destinationPeak = kNaN});
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], 0.25F);
}

TEST(CarEdgeCases, KeepsPixelsWithoutLightThatLieAboveANegativeKnee) {
  for (const float largest : {-0.25F, 0.0F}) {
    const Pixel pixel = {-0.5F, largest, -0.75F, 1.0F};
    const Quillon::SupportVector params = {-1.0F, 1.0F, 1.0F, 1.0F, 0.0F, 0.0F, 0.0F};
    ExpectBits(
        tonemap::Map<Quillon::CARToneMap>(pixel, params, {.peak = 3.0F, .preservation = 1.0F}),
        pixel);
  }
}

TEST(CarEdgeCases, CompressesWhatTheDesaturationLeft) {
  // At the peak the pixel is grey of its luminance, 0.125 x 12 = 1.5, before the curve halves it.
  ExpectWithinUlps(MapPixel({12.0F, 0.0F, 0.0F, 1.0F}, {}, {.peak = 12.0F}),
                   {0.75F, 0.75F, 0.75F, 1.0F});
}

TEST(CarEdgeCases, StopsWhenTheDesaturationLedBelowTheKnee) {
  ExpectWithinUlps(MapPixel({2.0F, 0.0F, 0.0F, 1.0F}, {}, {.peak = 2.0F}),
                   {0.25F, 0.25F, 0.25F, 1.0F});
}

TEST(CarEdgeCases, LooksPastANaNThatIsNotTheFirstChannel) {
  // Above the knee the luminance is not a number, and with it the whole pixel.
  const Pixel above = MapPixel({1.5F, kNaN, 0.75F, 1.0F}, {});
  EXPECT_TRUE(std::isnan(above[0]) && std::isnan(above[1]) && std::isnan(above[2]));
  const Pixel below = MapPixel({0.5F, kNaN, 0.25F, 1.0F}, {});
  EXPECT_EQ(below[0], 0.5F);
  EXPECT_TRUE(std::isnan(below[1]));
  EXPECT_EQ(below[2], 0.25F);
}

TEST(CarEdgeCases, TakesANaNInTheFirstChannelForNoHighlight) {
  const Pixel pixel = MapPixel({kNaN, 8.0F, 4.0F, 1.0F}, {});
  EXPECT_TRUE(std::isnan(pixel[0]));
  EXPECT_EQ(pixel[1], 8.0F);
  EXPECT_EQ(pixel[2], 4.0F);
}

TEST(CarEdgeCases, WritesOnlyColorsWhateverTheyAre) {
  const Quillon::SupportVector params = {0.5F, 0.2F, 0.99F, 1.0F, 0.25F, 0.5F, 0.125F};
  const auto settings = tonemap::SettingsOf({.peak = 100.0F, .gain = 2.0F, .preservation = 0.5F});
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::CARToneMap{}(pixel, params, settings); });
}

}  // namespace
