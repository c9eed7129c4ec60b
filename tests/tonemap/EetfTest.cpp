// The EETF, by way of BT.2390 on each channel with a reference white of 1 nit: light in whole nits
// meets entries of the encoding table, and what comes back is an entry of the decoding table. A
// step of that table is 0.1 % of light, a step of single precision at 1 a two-thousandth of that.

#include "tests/tonemap/EetfTest.h"

#include <cmath>

#include "tonemap/Bt2390.h"

namespace {

using tonemap::Eetf;
using tonemap::kNaN;
using tonemap::kPQ1000Nits;
using tonemap::Pixel;

Pixel MapPixel(const Pixel& pixel, const Eetf& eetf) {
  return tonemap::Map<Quillon::Bt2390RGBByChannelToneMap>(pixel, tonemap::Bt2390Params(eetf), {});
}

/// Light in the first channel alone.
float MapNits(float nits, const Eetf& eetf) { return MapPixel({nits, 0.0F, 0.0F, 1.0F}, eetf)[0]; }

TEST(Eetf, LeavesASignalAtTheKneeStartAlone) {
  EXPECT_FLOAT_EQ(MapNits(1000.0F, {.kneeStart = kPQ1000Nits, .maxLum = 0.5F}),
                  tonemap::k1000NitsByTables);
}

TEST(Eetf, BendsASignalOneStepAboveTheKneeStart) {
  // (0.7518271 - 1)^3 / 0.25 x 0.1481 + 0.5 = 0.4909452, entry 4021.
  EXPECT_FLOAT_EQ(
      MapNits(1000.0F, {.kneeStart = std::nextafter(kPQ1000Nits, 0.0F), .maxLum = 0.5F}),
      84.1861038F);
}

TEST(Eetf, PutsACubicInThePlaceOfTheHermiteSpline) {
  // (0.9265467 - 1)^3 / 0.25 x 0.1481 + 0.5 = 0.4997652. The two agree where the knee starts at
  // 1.5 maxLum - 0.5; here the spline would give 0.5437.
  EXPECT_FLOAT_EQ(MapNits(5000.0F, {.kneeStart = 0.7F, .maxLum = 0.5F}), 91.9639969F);
}

TEST(Eetf, ScalesTheCubicBy01481AndNotByFourTwentySevenths) {
  // 0.4131623, entry 3384; 0.4131341 and entry 3383 with 4/27.
  EXPECT_FLOAT_EQ(MapNits(70.0F, {.kneeStart = 0.25F, .maxLum = 0.5F}), 37.4364281F);
}

TEST(Eetf, LiftsBlackByTheFourthPowerOfTheRest) {
  // 0.4919216^4 x 0.125 + 0.5080784 = 0.5153981.
  EXPECT_FLOAT_EQ(MapNits(100.0F, {.minLum = 0.125F}), 107.465157F);
}

TEST(Eetf, TakesASignalBelowSourceBlackForBlack) {
  // 1 nit lies below a source black of 0.25: 0.125 x 0.5 + 0.25 = 0.3125.
  EXPECT_FLOAT_EQ(MapNits(1.0F, {.minLum = 0.125F, .sourceBlack = 0.25F, .sourceRange = 0.5F}),
                  11.7287922F);
}

TEST(Eetf, TakesASignalAboveTheSourcePeakForThePeak) {
  // 0.7518 of a range of 0.5 counts as 1 and becomes maxLum: 0.75 x 0.5 = 0.375.
  EXPECT_FLOAT_EQ(MapNits(1000.0F, {.kneeStart = 0.625F, .maxLum = 0.75F, .sourceRange = 0.5F}),
                  24.5459919F);
}

TEST(Eetf, CubesInSinglePrecision) {
  // 0.598 after products of floats, entry 4898. One step less, entry 4897, when the cube is taken
  // in double precision or rounded once.
  EXPECT_FLOAT_EQ(MapNits(333.0F, {.kneeStart = 0.493164062F, .maxLum = 678.0F / 1024.0F}),
                  239.355713F);
}

TEST(Eetf, TakesTheFourthPowerInDoublePrecision) {
  // Entry 5145; 5146 with a power in single precision.
  EXPECT_FLOAT_EQ(MapNits(163.0F, {.minLum = 1886.0F / 1024.0F}), 318.203644F);
}

TEST(Eetf, RoundsTheLiftedSignalOnceAfterTheAddition) {
  // Entry 6349; 6348 when the product is rounded before it is added.
  EXPECT_FLOAT_EQ(MapNits(1122.0F, {.minLum = 3568.0F / 1024.0F}), 1238.06946F);
}

TEST(Eetf, LetsNaNPassTheCapAt1) {
  // A NaN above the knee. The dark channel ends below 0, which has the pixel decoded exactly:
  // 0.85^4 x -1 + 0.15. A cap that swallowed NaN would leave 10000 nits.
  const Pixel pixel = MapPixel({1.0F, 1000.0F, 1000.0F, 1.0F},
                               {.kneeStart = 0.5F, .maxLum = kNaN, .minLum = -1.0F});
  EXPECT_EQ(pixel[0], 0.0F);
  EXPECT_TRUE(std::isnan(pixel[1]));
  EXPECT_TRUE(std::isnan(pixel[2]));
}

TEST(Eetf, LeavesNaNToTheTableWhichReadsBlack) {
  tonemap::ExpectBits(
      MapPixel({1000.0F, 5000.0F, 300.0F, 0.5F}, {.kneeStart = 0.5F, .maxLum = kNaN}),
      {0.0F, 0.0F, 0.0F, 0.5F});
}

TEST(Eetf, PassesThroughARangeOf0) {
  // At source black 0 / 0; above it infinity, which counts as the peak and comes to source black.
  const Pixel pixel =
      MapPixel({1000.0F, 5000.0F, 0.0F, 1.0F},
               {.kneeStart = 0.5F, .sourceBlack = kPQ1000Nits, .sourceRange = 0.0F});
  EXPECT_EQ(pixel[0], 0.0F);
  EXPECT_FLOAT_EQ(pixel[1], tonemap::k1000NitsByTables);
  EXPECT_EQ(pixel[2], 0.0F);
}

}  // namespace
