#include <cmath>

#include "cpu/GamutCompression.h"
#include "tests/tonemap/CurveTest.h"

namespace {

using tonemap::Bits;
using tonemap::ExpectBits;
using tonemap::kInfinity;
using tonemap::kNaN;
using tonemap::Pixel;

Pixel Compress(Pixel pixel, float limit) {
  Quillon::GamutCompressionReinhard{}(pixel.data(), Quillon::SupportVector{limit}, {});
  return pixel;
}

TEST(GamutReinhard, LeavesABlackPixelAlone) {
  ExpectBits(Compress({0.0F, -0.0F, 0.0F, 1.0F}, 2.0F), {0.0F, -0.0F, 0.0F, 1.0F});
}

TEST(GamutReinhard, LeavesAPixelWhoseLargestChannelIs1e15thAlone) {
  ExpectBits(Compress({-1.0F, 1e-15F, -2.0F, 1.0F}, 2.0F), {-1.0F, 1e-15F, -2.0F, 1.0F});
}

TEST(GamutReinhard, CompressesAPixelWhoseLargestChannelIsJustAbove1e15th) {
  const float justAbove = std::nextafter(1e-15F, 1.0F);
  const Pixel pixel = Compress({-1.0F, justAbove, -2.0F, 1.0F}, 2.0F);
  EXPECT_NEAR(pixel[0], 0.0F, 1e-21F);
  EXPECT_EQ(pixel[1], justAbove);
  EXPECT_NEAR(pixel[2], 0.0F, 1e-21F);
}

TEST(GamutReinhard, LeavesTheLargestChannelAloneWhicheverItIs) {
  EXPECT_EQ(Compress({3.0F, -1.0F, 0.0F, 1.0F}, 2.0F)[0], 3.0F);
  EXPECT_EQ(Compress({-1.0F, 3.0F, 0.0F, 1.0F}, 2.0F)[1], 3.0F);
  EXPECT_EQ(Compress({-1.0F, 0.0F, 3.0F, 1.0F}, 2.0F)[2], 3.0F);
}

TEST(GamutReinhard, LeavesAGreyPixelAlone) {
  ExpectBits(Compress({0.375F, 0.375F, 0.375F, 1.0F}, 2.0F), {0.375F, 0.375F, 0.375F, 1.0F});
}

TEST(GamutReinhard, LeavesADistanceOf098InTheOuterChannelsAlone) {
  const float atThreshold = 1.0F - 0.98F;
  ExpectBits(Compress({atThreshold, 1.0F, atThreshold, 1.0F}, 2.0F),
             {atThreshold, 1.0F, atThreshold, 1.0F});
}

TEST(GamutReinhard, LeavesADistanceOf092InTheMiddleChannelAlone) {
  const float atThreshold = 1.0F - 0.92F;
  ExpectBits(Compress({1.0F, atThreshold, 1.0F, 1.0F}, 2.0F), {1.0F, atThreshold, 1.0F, 1.0F});
}

TEST(GamutReinhard, CompressesBeyond092InTheMiddleChannelOnly) {
  // Distance 0.95: x = 0.03, k = 1.08 x 0.08 / 1 = 0.0864, 0.92 + 0.03 k / (0.03 + k) = 0.942268.
  EXPECT_NEAR(Compress({1.0F, 0.05F, 1.0F, 1.0F}, 2.0F)[1], 0.0577320F, 1e-6F);
  EXPECT_NEAR(Compress({0.05F, 1.0F, 0.05F, 1.0F}, 2.0F)[0], 0.05F, 1e-7F);
}

TEST(GamutReinhard, CompressesADistanceOf1) {
  // x = 0.02, k = 0.0204: 1 - 0.98 - 0.02 k / (0.02 + k); x = 0.08, k = 0.0864 in the middle.
  EXPECT_NEAR(Compress({0.0F, 1.0F, 1.0F, 1.0F}, 2.0F)[0], 0.00990099F, 1e-7F);
  EXPECT_NEAR(Compress({1.0F, 0.0F, 1.0F, 1.0F}, 2.0F)[1], 0.03846154F, 1e-7F);
  EXPECT_NEAR(Compress({1.0F, 1.0F, 0.0F, 1.0F}, 2.0F)[2], 0.00990099F, 1e-7F);
}

TEST(GamutReinhard, TakesADistanceAtTheLimitToZeroInEveryChannel) {
  ExpectBits(Compress({-1.0F, 1.0F, -1.0F, 1.0F}, 2.0F), {0.0F, 1.0F, 0.0F, 1.0F});
  ExpectBits(Compress({1.0F, -1.0F, 1.0F, 1.0F}, 2.0F), {1.0F, 0.0F, 1.0F, 1.0F});
}

TEST(GamutReinhard, TakesEverythingBeyondTheLimitForTheLimit) {
  ExpectBits(Compress({-1e30F, 1.0F, -kInfinity, 1.0F}, 2.0F), {0.0F, 1.0F, 0.0F, 1.0F});
}

TEST(GamutReinhard, ClampsToALimitOf1AndDoesNothingElse) {
  ExpectBits(Compress({-1.0F, 1.0F, 0.015625F, 1.0F}, 1.0F), {0.0F, 1.0F, 0.015625F, 1.0F});
}

TEST(GamutReinhard, ClampsToALimitBelow1AndDoesNothingElse) {
  ExpectBits(Compress({-1.0F, 1.0F, 0.75F, 1.0F}, 0.5F), {0.5F, 1.0F, 0.75F, 1.0F});
}

TEST(GamutReinhard, TakesOneLess098InSinglePrecision) {
  // 0x3CA3D700 and not 0x3CA3D70A: a step's difference on a distance of 1.25.
  EXPECT_EQ(Bits(1.0F - 0.98F), 0x3CA3D700U);
  EXPECT_EQ(Compress({-0.25F, 1.0F, 1.0F, 1.0F}, 1.5F)[0], 0x1.6898p-11F);
}

TEST(GamutReinhard, TakesOneLess092InSinglePrecision) {
  // 0x3DA3D708 and not 0x3DA3D70A, which would lead below 0.
  EXPECT_EQ(Bits(1.0F - 0.92F), 0x3DA3D708U);
  EXPECT_EQ(Bits(Compress({1.0F, -3.875F, 1.0F, 1.0F}, 2.0F)[1]), 0U);
}

TEST(GamutReinhard, MultipliesWithTheReciprocalOfTheLargestChannel) {
  // 5.25 x (1 / 7.5) and 5.25 / 7.5 lie two steps apart in the end.
  ExpectBits(Compress({2.25F, 7.5F, 2.25F, 1.0F}, 2.0F),
             {0x1.1ffffcp+1F, 7.5F, 0x1.1ffffcp+1F, 1.0F});
}

TEST(GamutReinhard, KeepsANaNThatIsNotFirstToItsOwnChannel) {
  const Pixel pixel = Compress({-1.0F, kNaN, 1.0F, 0.5F}, 2.0F);
  EXPECT_EQ(pixel[0], 0.0F);
  EXPECT_TRUE(std::isnan(pixel[1]));
  EXPECT_EQ(pixel[2], 1.0F);
  EXPECT_EQ(pixel[3], 0.5F);
}

TEST(GamutReinhard, GivesNaNWhenTheFirstChannelIsNaN) {
  const Pixel pixel = Compress({kNaN, 1.0F, 0.5F, 0.25F}, 2.0F);
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], 0.25F);
}

TEST(GamutReinhard, GivesNaNForInfiniteLight) {
  const Pixel pixel = Compress({1.0F, 0.5F, kInfinity, 0.25F}, 2.0F);
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]) && std::isnan(pixel[2]));
  EXPECT_EQ(pixel[3], 0.25F);
}

TEST(GamutReinhard, WritesOnlyColorsWhateverTheyAre) {
  const Quillon::SupportVector params = {2.0F};
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::GamutCompressionReinhard{}(pixel, params, {}); });
}

TEST(GamutReinhard, LeavesPixelsWithoutLightAlone) {
  for (const Pixel& pixel : {Pixel{0.0F, 0.0F, 0.0F, 1.0F}, Pixel{-1.0F, -2.0F, 1e-15F, 1.0F},
                             Pixel{-1.0F, -1.0F, -1.0F, 1.0F}}) {
    EXPECT_EQ(Compress(pixel, 2.0F), pixel);
  }
}

TEST(GamutReinhard, LeavesChannelsUpToTheirThresholdAlone) {
  EXPECT_EQ(Compress({0.0625F, 1.0F, 0.0625F, 1.0F}, 2.0F), (Pixel{0.0625F, 1.0F, 0.0625F, 1.0F}));
  const Pixel green = Compress({1.0F, 0.0625F, 1.0F, 1.0F}, 2.0F);
  EXPECT_GT(green[1], 0.0625F) << "channel 1 has the lower threshold";
}

TEST(GamutReinhard, TakesADistanceAtTheLimitToZero) {
  const Pixel pixel = Compress({-1.0F, 1.0F, -3.0F, 0.5F}, 2.0F);
  EXPECT_NEAR(pixel[0], 0.0F, 1e-6F);
  EXPECT_EQ(pixel[1], 1.0F);
  EXPECT_NEAR(pixel[2], 0.0F, 1e-6F) << "clamped to the limit first";
  EXPECT_EQ(pixel[3], 0.5F);
}

TEST(GamutReinhard, OnlyClampsWithALimitUpTo1) {
  EXPECT_EQ(Compress({-1.0F, 1.0F, 0.25F, 1.0F}, 1.0F), (Pixel{0.0F, 1.0F, 0.25F, 1.0F}));
  EXPECT_EQ(Compress({-1.0F, 1.0F, 0.25F, 1.0F}, 0.5F), (Pixel{0.5F, 1.0F, 0.5F, 1.0F}));
}

}  // namespace
