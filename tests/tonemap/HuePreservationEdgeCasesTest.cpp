// The soft knee of these tests leads from a knee at 1 over a source peak of 4 to a destination peak
// of 2: k = 3 x 1 / 2 = 1.5, so that x at distance d above the knee comes to 1 + 1.5 d / (d + 1.5).

#include <cmath>

#include "tests/tonemap/CurveTest.h"
#include "tonemap/HuePreservation.h"

namespace {

using tonemap::Controls;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::kInfinity;
using tonemap::kNaN;
using tonemap::Pixel;

struct Peaks {
  float source = 4.0F;
  float knee = 1.0F;
  float destination = 2.0F;
};

Pixel MapPixel(const Pixel& pixel, const Controls& controls, const Peaks& peaks = {}) {
  return tonemap::Map<Quillon::HuePreservationToneMap>(
      pixel, {peaks.source, peaks.knee, peaks.destination}, controls);
}

float MapGrey(float value, const Peaks& peaks = {}) {
  const Pixel pixel = MapPixel({value, value, value, 1.0F}, {}, peaks);
  EXPECT_EQ(pixel[0], pixel[1]);
  EXPECT_EQ(pixel[1], pixel[2]);
  return pixel[0];
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneWhenThePeaksAreEqual) {
  ExpectBits(MapPixel({4.0F, 0.5F, 1.5F, 1.0F}, {.gain = 2.0F}, {.destination = 4.0F}),
             {8.0F, 1.0F, 3.0F, 1.0F});
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneWhenTheDestinationsPeakIsHigher) {
  ExpectBits(MapPixel({4.0F, 0.5F, 1.5F, 1.0F}, {.gain = 2.0F}, {.destination = 5.0F}),
             {8.0F, 1.0F, 3.0F, 1.0F});
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneWhenTheSourcesPeakIsNotAboveTheKnee) {
  for (const float knee : {4.0F, 5.0F}) {
    ExpectBits(MapPixel({6.0F, 0.5F, 1.5F, 1.0F}, {.gain = 2.0F}, {.knee = knee}),
               {12.0F, 1.0F, 3.0F, 1.0F});
  }
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneToAPixelAtTheKnee) {
  ExpectBits(MapPixel({0.5F, 0.25F, -2.0F, 1.0F}, {.gain = 2.0F}), {1.0F, 0.5F, -4.0F, 1.0F});
}

TEST(HuePreservationEdgeCases, DoesNotStirTinyLightWhereThereIsNothingToCompress) {
  // Where the share is sought, channels as dark as this move a quarter of the way to the largest.
  // At the knee and between equal peaks it is not sought.
  const Pixel pixel = {4e-15F, 2e-15F, 1e-15F, 1.0F};
  ExpectBits(MapPixel(pixel, {}, {.knee = 4e-15F}), pixel);
  ExpectBits(MapPixel(pixel, {}, {.knee = 1e-15F, .destination = 4.0F}), pixel);
  EXPECT_NE(MapPixel(pixel, {}, {.knee = 1e-15F}), pixel);
}

TEST(HuePreservationEdgeCases, MapsGreyByTheSoftKnee) {
  EXPECT_FLOAT_EQ(MapGrey(2.5F), 1.75F);
  EXPECT_FLOAT_EQ(MapGrey(1.75F), 1.5F);
}

TEST(HuePreservationEdgeCases, MapsTheSourcesPeakOntoTheDestinations) {
  EXPECT_EQ(MapGrey(4.0F), 2.0F);
}

TEST(HuePreservationEdgeCases, GoesOnAboveTheSourcesPeakWithoutAClamp) {
  EXPECT_FLOAT_EQ(MapGrey(7.0F), 2.2F);
}

TEST(HuePreservationEdgeCases, StartsWithASlopeOf1AtTheKnee) {
  // d - d^2 / 1.5 for a small distance d of 2^-10.
  EXPECT_NEAR(MapGrey(1.0F + 0x1p-10F), 1.0F + 0x1p-10F - 0x1p-20F / 1.5F, 1.2e-7F);
}

TEST(HuePreservationEdgeCases, ScalesByTheSmallestRatioWhenColorIsFullyPreserved) {
  // Ratios 2 / 4, 1.75 / 2.5 and 1, the last of a channel below the knee.
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.preservation = 1.0F}),
             {2.0F, 1.25F, 0.25F, 1.0F});
}

TEST(HuePreservationEdgeCases, GoesAsFarAsThePerChannelCurvesAllowWhenNoColorIsPreserved) {
  // From (2, 1.25, 0.25) towards 2 by the smaller of 0.5 / 0.75 and 0.25 / 1.75: the channel below
  // the knee has its own value back.
  ExpectWithinUlps(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {}),
                   {2.0F, 1.25F + 0.75F / 7.0F, 0.5F, 1.0F});
}

TEST(HuePreservationEdgeCases, GoesHalfAsFarWhenHalfTheColorIsPreserved) {
  ExpectWithinUlps(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.preservation = 0.5F}),
                   {2.0F, 1.25F + 0.375F / 7.0F, 0.375F, 1.0F});
}

TEST(HuePreservationEdgeCases, TakesAPreservationBeyondItsRangeForTheNearestEnd) {
  const Pixel pixel = {4.0F, 2.5F, 0.5F, 1.0F};
  ExpectBits(MapPixel(pixel, {.preservation = 3.0F}), MapPixel(pixel, {.preservation = 1.0F}));
  ExpectBits(MapPixel(pixel, {.preservation = -3.0F}), MapPixel(pixel, {.preservation = 0.0F}));
  EXPECT_NE(MapPixel(pixel, {.preservation = 3.0F}), MapPixel(pixel, {.preservation = -3.0F}));
}

TEST(HuePreservationEdgeCases, KeepsARatioOf1ForAChannelAtTheKnee) {
  // The channel at the knee is scaled with the pixel and comes back as far as 1 - 0.5 of 2 - 0.5.
  ExpectBits(MapPixel({4.0F, 1.0F, 4.0F, 1.0F}, {.preservation = 1.0F}), {2.0F, 0.5F, 2.0F, 1.0F});
  ExpectWithinUlps(MapPixel({4.0F, 1.0F, 4.0F, 1.0F}, {}), {2.0F, 1.0F, 2.0F, 1.0F});
}

TEST(HuePreservationEdgeCases, TreatsTheThreeChannelsAlike) {
  const Pixel pixel = MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.preservation = 0.25F});
  ExpectBits(MapPixel({0.5F, 4.0F, 2.5F, 1.0F}, {.preservation = 0.25F}),
             {pixel[2], pixel[0], pixel[1], 1.0F});
}

TEST(HuePreservationEdgeCases, TakesAKneeOf0OrLessForATinyOne) {
  // k = 4 x 2 / 2 = 4: 4 comes to 4 x 4 / 8 = 2, and 1 to 4 / 5.
  for (const float knee : {0.0F, -1.0F, -kInfinity}) {
    EXPECT_FLOAT_EQ(MapGrey(4.0F, {.knee = knee}), 2.0F) << knee;
    EXPECT_FLOAT_EQ(MapGrey(1.0F, {.knee = knee}), 0.8F) << knee;
  }
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneWhenTheKneeIsNaN) {
  // A floor that swallowed NaN would go on with a knee of 1e-15.
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.gain = 2.0F}, {.knee = kNaN}),
             {8.0F, 5.0F, 1.0F, 1.0F});
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneWhenAPeakIsNaN) {
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.gain = 2.0F}, {.source = kNaN}),
             {8.0F, 5.0F, 1.0F, 1.0F});
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.gain = 2.0F}, {.destination = kNaN}),
             {8.0F, 5.0F, 1.0F, 1.0F});
}

TEST(HuePreservationEdgeCases, AppliesTheGainAloneWhenTheFirstChannelIsNaN) {
  const Pixel pixel = MapPixel({kNaN, 4.0F, 0.5F, 1.0F}, {.gain = 2.0F});
  EXPECT_TRUE(std::isnan(pixel[0]));
  EXPECT_EQ(pixel[1], 8.0F);
  EXPECT_EQ(pixel[2], 1.0F);
}

TEST(HuePreservationEdgeCases, KeepsANaNThatIsNotFirstToItsOwnChannel) {
  const Pixel pixel = MapPixel({4.0F, kNaN, 0.5F, 1.0F}, {});
  EXPECT_EQ(pixel[0], 2.0F);
  EXPECT_TRUE(std::isnan(pixel[1]));
  EXPECT_FLOAT_EQ(pixel[2], 0.5F);
}

TEST(HuePreservationEdgeCases, WritesOnlyColorsWhateverTheyAre) {
  const auto settings = tonemap::SettingsOf({.gain = 2.0F, .preservation = 0.5F});
  const Quillon::SupportVector params = {4.0F, 1.0F, 2.0F};
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::HuePreservationToneMap{}(pixel, params, settings); });
}

}  // namespace
