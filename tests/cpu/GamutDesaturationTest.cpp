#include <cmath>

#include "cpu/GamutCompression.h"
#include "tests/tonemap/CurveTest.h"

namespace {

using tonemap::Bits;
using tonemap::ExpectBits;
using tonemap::kInfinity;
using tonemap::kNaN;
using tonemap::Pixel;

const Quillon::SupportVector kBT709 = {0.2126F, 0.7152F, 0.0722F};

/// 4 % as one less 0.96 in single precision.
constexpr float kThreshold = 0x1.47ae2p-5F;

Pixel Compress(Pixel pixel, const Quillon::SupportVector& weights = kBT709) {
  Quillon::GamutCompressionDesaturation{}(pixel.data(), weights, {});
  return pixel;
}

void ExpectNear(const Pixel& actual, const Pixel& expected) {
  for (std::size_t channel = 0; channel < actual.size(); ++channel) {
    EXPECT_NEAR(actual[channel], expected[channel], 2e-7F) << "channel " << channel;
  }
}

TEST(GamutDesaturation, LeavesAPixelWithItsSmallestChannelAtTheThresholdAlone) {
  EXPECT_EQ(Bits(kThreshold), 0x3D23D710U);
  // 0.1 would not come back from a move to its grey and back.
  ExpectBits(Compress({kThreshold, 1.0F, 0.1F, 1.0F}), {kThreshold, 1.0F, 0.1F, 1.0F});
  ExpectBits(Compress({2.0F, 1.0F, 2.0F * kThreshold, 1.0F}),
             {2.0F, 1.0F, 2.0F * kThreshold, 1.0F});
}

TEST(GamutDesaturation, LeavesAPixelInsideAlone) {
  ExpectBits(Compress({0.0625F, 1.0F, 0.5F, 1.0F}), {0.0625F, 1.0F, 0.5F, 1.0F});
}

TEST(GamutDesaturation, CompressesAPixelBetween0AndTheThreshold) {
  // m = 0.02, t = 0.04: x = -0.02, a = -5.04, b = -0.04, f = -0.004032 / 0.3008 + 0.04 = 0.026631;
  // grey of luminance 0.8576.
  ExpectNear(Compress({0.02F, 1.0F, 0.5F, 1.0F}), {0.0266313F, 0.9988726F, 0.5028311F, 1.0F});
}

TEST(GamutDesaturation, TakesOneLess096InSinglePrecision) {
  // With 0.04 instead of 0x3D23D710 every one of the three would be another float.
  ExpectBits(Compress({0.0F, 1.0F, 0.5F, 1.0F}),
             {0x1.466p-6F, 0x1.fe4e74p-1F, 0x1.0440bcp-1F, 1.0F});
}

TEST(GamutDesaturation, TakesAChannelOfMinus5To0AndTheOthersByTheSameFactor) {
  // (0 - 0.8576) / (-5 - 0.8576) = 0.146408 of the way from grey.
  ExpectNear(Compress({-5.0F, 1.0F, 0.5F, 1.0F}), {0.0F, 0.8784485F, 0.8052444F, 1.0F});
}

TEST(GamutDesaturation, HoldsAChannelBelowMinus5At0) {
  ExpectNear(Compress({-6.0F, 1.0F, 0.5F, 1.0F}), {0.0F, 0.8754083F, 0.8128791F, 1.0F});
}

TEST(GamutDesaturation, TurnsAPixelWithAHugeNegativeChannelGrey) {
  ExpectNear(Compress({-1e30F, 1.0F, 0.5F, 1.0F}), {0.0F, 0.8576F, 0.8576F, 1.0F});
}

TEST(GamutDesaturation, GivesBlueAloneNoLuminance) {
  // The anchor is threshold + 0.01 = 0.05, and so nothing that 0.0722 of blue would raise:
  // s = (0.0199203 - 0.05) / (0 - 0.05) = 0.6015936. With 0.0722 blue would keep 0.7395.
  ExpectBits(Compress({1.0F, 0.0F, 0.0F, 1.0F}),
             {0x1.3e3712p-1F, 0x1.465fecp-6F, 0x1.465fecp-6F, 1.0F});
}

TEST(GamutDesaturation, WeighsRedWithTheWeightsOfRedAndBlue) {
  // Luminance 0.2848: s = (0.0199203 - 0.2848) / -0.2848 = 0.9300551.
  ExpectNear(Compress({0.0F, 0.0F, 1.0F, 1.0F}), {0.0199203F, 0.0199203F, 0.9499754F, 1.0F});
}

TEST(GamutDesaturation, AnchorsRedAt022WhereItsLuminanceIsLess) {
  // s = (0.0199203 - 0.22) / -0.22 = 0.9094530.
  ExpectNear(Compress({0.0F, 0.0F, 1.0F, 1.0F}, {0.0F, 0.0F, 0.0F}),
             {0.0199203F, 0.0199203F, 0.9293734F, 1.0F});
}

TEST(GamutDesaturation, KeepsBlackBlack) {
  ExpectBits(Compress({0.0F, 0.0F, 0.0F, 1.0F}), {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(GamutDesaturation, CountsAPixelWithoutLightAsALargestChannelOf0) {
  // Threshold 1e-15, anchor 0.01, s = -0.01 / (-2 - 0.01) = 0.0049751.
  ExpectNear(Compress({-1.0F, -2.0F, -0.5F, 1.0F}), {0.0049751F, 0.0F, 0.0074627F, 1.0F});
}

TEST(GamutDesaturation, LeavesANaNThatIsNotFirstAloneWhereTheOthersLieInside) {
  const Pixel pixel = Compress({0.5F, kNaN, 1.0F, 0.25F});
  EXPECT_EQ(pixel[0], 0.5F);
  EXPECT_TRUE(std::isnan(pixel[1]));
  EXPECT_EQ(pixel[2], 1.0F);
}

TEST(GamutDesaturation, GivesNaNWhenTheFirstChannelIsNaN) {
  const Pixel pixel = Compress({kNaN, 1.0F, 0.5F, 0.25F});
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], 0.25F);
}

TEST(GamutDesaturation, LeavesInfiniteLightAloneWhereNothingIsSmaller) {
  ExpectBits(Compress({kInfinity, kInfinity, kInfinity, 1.0F}),
             {kInfinity, kInfinity, kInfinity, 1.0F});
}

TEST(GamutDesaturation, WritesOnlyColorsWhateverTheyAre) {
  tonemap::ExpectOnlyColorsAreWritten(
      [](float* pixel) { Quillon::GamutCompressionDesaturation{}(pixel, kBT709, {}); });
}

TEST(GamutDesaturation, LeavesPixelsInsideAlone) {
  const Quillon::SupportVector weights = {0.2126F, 0.7152F, 0.0722F};
  EXPECT_EQ(Compress({0.05F, 1.0F, 0.5F, 1.0F}, weights), (Pixel{0.05F, 1.0F, 0.5F, 1.0F}));
  EXPECT_NE(Compress({0.03F, 1.0F, 0.5F, 1.0F}, weights), (Pixel{0.03F, 1.0F, 0.5F, 1.0F}));
}

TEST(GamutDesaturation, TakesAChannelAtTheFloorToZero) {
  for (const float channel : {-5.0F, -6.0F}) {
    const Pixel pixel = Compress({channel, 1.0F, 0.5F, 0.75F}, {0.2126F, 0.7152F, 0.0722F});
    EXPECT_NEAR(pixel[0], 0.0F, 1e-6F);
    EXPECT_LT(pixel[1], 1.0F);
    EXPECT_GT(pixel[2], 0.5F);
    EXPECT_EQ(pixel[3], 0.75F);
  }
}

TEST(GamutDesaturation, DoesNotWeighChannel0) {
  // Blue alone: the luminance is 0, so the anchor is the threshold and its margin whatever the
  // weights.
  const Pixel blue = {1.0F, 0.0F, 0.0F, 1.0F};
  EXPECT_EQ(Compress(blue, {0.2126F, 0.7152F, 0.0722F}),
            Compress(blue, {0.2126F, 0.7152F, 100.0F}));
}

TEST(GamutDesaturation, WeighsChannel2WithRedAndBlue) {
  const Pixel red = {0.0F, 0.0F, 1.0F, 1.0F};
  const Pixel both = Compress(red, {0.25F, 0.5F, 0.25F});
  EXPECT_EQ(both, Compress(red, {0.5F, 0.5F, 0.0F}));
  EXPECT_NE(both, Compress(red, {0.25F, 0.5F, 0.0F}));
}

}  // namespace
