// The desaturation of highlights, by way of a curve that does nothing else: BT.2390 on each channel
// with a knee start of 1.

#include <cmath>

#include "tests/tonemap/CurveTest.h"
#include "tonemap/Bt2390.h"
#include "tonemap/CarToneCurve.h"

namespace {

using tonemap::Controls;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::kInfinity;
using tonemap::kNaN;
using tonemap::Pixel;

/// Weights of red, green and blue.
using Weights = std::array<float, 3>;
constexpr Weights kWeights = {0.25F, 0.5F, 0.125F};

Pixel Desaturate(const Pixel& pixel, float threshold, const Controls& controls,
                 const Weights& weights = kWeights) {
  const Quillon::SupportVector params = {0.0F,       1.0F,       0.0F,      1.0F, 1.0F,
                                         1.0F,       0.0F,       1.0F,      1.0F, threshold,
                                         weights[0], weights[1], weights[2]};
  return tonemap::Map<Quillon::Bt2390RGBByChannelToneMap>(pixel, params, controls);
}

void ExpectNaNColors(const Pixel& pixel, float alpha) {
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], alpha);
}

TEST(HighlightDesaturation, AppliesTheGainAloneToAPixelAtTheThreshold) {
  ExpectBits(Desaturate({0.5F, 1.0F, 0.25F, 1.0F}, 2.0F, {.peak = 4.0F, .gain = 2.0F}),
             {1.0F, 2.0F, 0.5F, 1.0F});
}

TEST(HighlightDesaturation, LooksForNoPlaceBetweenAPeakAndAThresholdThatAreOne) {
  // At both of them it would be 0 / 0.
  ExpectBits(Desaturate({0.5F, 2.0F, 0.25F, 1.0F}, 2.0F, {.peak = 2.0F}),
             {0.5F, 2.0F, 0.25F, 1.0F});
}

TEST(HighlightDesaturation, AppliesTheGainAloneToAPixelBelowTheThreshold) {
  ExpectBits(Desaturate({-3.0F, 0.25F, 0.125F, 1.0F}, 2.0F, {.peak = 4.0F, .gain = 4.0F}),
             {-12.0F, 1.0F, 0.5F, 1.0F});
}

TEST(HighlightDesaturation, StartsOneStepAboveTheThreshold) {
  // A place of 2^-23 between threshold and peak; its fourth root is 2^-5.75. The luminance is a
  // quarter of red, and dark channels are lifted by that share of it.
  const float justAbove = std::nextafter(1.0F, 2.0F);
  const Pixel pixel = Desaturate({0.0F, 0.0F, justAbove, 1.0F}, 1.0F, {.peak = 2.0F});
  EXPECT_NEAR(pixel[0], 0.00464534F, 1e-7F);
  EXPECT_NEAR(pixel[1], 0.00464534F, 1e-7F);
  EXPECT_NEAR(pixel[2], 1.0F - 3.0F * 0.00464534F, 2e-7F);
}

TEST(HighlightDesaturation, ComparesWithTheThresholdAfterTheGain) {
  // 0.75 lies below the threshold, its double at the peak: grey of its luminance.
  ExpectWithinUlps(Desaturate({0.0F, 0.0F, 0.75F, 1.0F}, 1.0F, {.peak = 1.5F, .gain = 2.0F}),
                   {0.375F, 0.375F, 0.375F, 1.0F});
}

TEST(HighlightDesaturation, TurnsAPixelAtThePeakIntoItsLuminance) {
  ExpectWithinUlps(Desaturate({1.0F, 2.0F, 4.0F, 0.5F}, 2.0F, {.peak = 4.0F}),
                   {2.125F, 2.125F, 2.125F, 0.5F});
}

TEST(HighlightDesaturation, WeighsTheThirdChannelWithTheFirstWeight) {
  const Pixel pixel = {1.0F, 2.0F, 4.0F, 1.0F};
  EXPECT_FLOAT_EQ(Desaturate(pixel, 2.0F, {.peak = 4.0F}, {1.0F, 0.0F, 0.0F})[0], 4.0F);
  EXPECT_FLOAT_EQ(Desaturate(pixel, 2.0F, {.peak = 4.0F}, {0.0F, 1.0F, 0.0F})[0], 2.0F);
  EXPECT_FLOAT_EQ(Desaturate(pixel, 2.0F, {.peak = 4.0F}, {0.0F, 0.0F, 1.0F})[0], 1.0F);
}

TEST(HighlightDesaturation, GoesHalfWayAtASixteenthOfTheWayToThePeak) {
  ExpectWithinUlps(Desaturate({2.0F, 0.0F, 0.0F, 1.0F}, 1.0F, {.peak = 17.0F}),
                   {1.125F, 0.125F, 0.125F, 1.0F});
}

TEST(HighlightDesaturation, GoesHalfWayAtThePeakWhenHalfTheColorIsPreserved) {
  ExpectWithinUlps(Desaturate({1.0F, 2.0F, 4.0F, 1.0F}, 2.0F, {.peak = 4.0F, .preservation = 0.5F}),
                   {1.5625F, 2.0625F, 3.0625F, 1.0F});
}

TEST(HighlightDesaturation, ChangesNothingWhenColorIsFullyPreserved) {
  ExpectBits(Desaturate({1.0F, 2.0F, 4.0F, 1.0F}, 2.0F, {.peak = 4.0F, .preservation = 1.0F}),
             {1.0F, 2.0F, 4.0F, 1.0F});
}

TEST(HighlightDesaturation, DoesNotPassTheLuminanceAboveThePeak) {
  // The place is 16, its fourth root 2: without the clamp colours would turn round.
  ExpectBits(Desaturate({17.0F, 1.0F, 2.0F, 1.0F}, 1.0F, {.peak = 2.0F}),
             {3.125F, 3.125F, 3.125F, 1.0F});
}

TEST(HighlightDesaturation, DoesNotAddColorForAPreservationAbove1) {
  ExpectBits(Desaturate({1.0F, 2.0F, 4.0F, 1.0F}, 2.0F, {.peak = 4.0F, .preservation = 2.0F}),
             {1.0F, 2.0F, 4.0F, 1.0F});
}

TEST(HighlightDesaturation, GivesNaNWhenThePeakLiesBelowTheThreshold) {
  // The fourth root of a negative number, on an ordinary pixel.
  ExpectNaNColors(Desaturate({0.5F, 1.0F, 4.0F, 0.25F}, 2.0F, {.peak = 1.0F}), 0.25F);
}

TEST(HighlightDesaturation, GivesNaNInTheCarCurveWhenThePeakLiesBelowTheKnee) {
  const Quillon::SupportVector params = {2.0F, 1.0F, 1.0F, 4.0F, 0.25F, 0.5F, 0.125F};
  ExpectNaNColors(tonemap::Map<Quillon::CARToneMap>({0.5F, 1.0F, 4.0F, 0.25F}, params, {}), 0.25F);
}

TEST(HighlightDesaturation, LeavesPixelsBetweenAPeakAndAHigherThresholdAlone) {
  ExpectBits(Desaturate({0.5F, 1.0F, 1.75F, 1.0F}, 2.0F, {.peak = 1.0F}),
             {0.5F, 1.0F, 1.75F, 1.0F});
}

TEST(HighlightDesaturation, TurnsIntoLuminanceWhereThePeakIsTheThreshold) {
  // An infinite place.
  ExpectBits(Desaturate({1.0F, 2.0F, 4.0F, 1.0F}, 2.0F, {.peak = 2.0F}),
             {2.125F, 2.125F, 2.125F, 1.0F});
}

TEST(HighlightDesaturation, GivesNaNForAnInfinitePlaceOfWhichNothingCounts) {
  ExpectNaNColors(Desaturate({1.0F, 2.0F, 4.0F, 1.0F}, 2.0F, {.peak = 2.0F, .preservation = 1.0F}),
                  1.0F);
}

TEST(HighlightDesaturation, LooksPastANaNThatIsNotTheFirstChannel) {
  const Pixel below = Desaturate({0.5F, kNaN, 0.25F, 1.0F}, 1.0F, {.peak = 4.0F});
  EXPECT_EQ(below[0], 0.5F);
  EXPECT_TRUE(std::isnan(below[1]));
  EXPECT_EQ(below[2], 0.25F);
  // Above the threshold the luminance is not a number either.
  ExpectNaNColors(Desaturate({0.5F, kNaN, 2.0F, 1.0F}, 1.0F, {.peak = 4.0F}), 1.0F);
}

TEST(HighlightDesaturation, TakesANaNInTheFirstChannelForNoHighlight) {
  const Pixel pixel = Desaturate({kNaN, 8.0F, 2.0F, 1.0F}, 1.0F, {.peak = 4.0F, .gain = 2.0F});
  EXPECT_TRUE(std::isnan(pixel[0]));
  EXPECT_EQ(pixel[1], 16.0F);
  EXPECT_EQ(pixel[2], 4.0F);
}

TEST(HighlightDesaturation, GivesNaNForInfiniteLight) {
  ExpectNaNColors(Desaturate({kInfinity, 1.0F, 1.0F, 1.0F}, 1.0F, {.peak = 4.0F}), 1.0F);
}

}  // namespace
