#include <cmath>

#include "tests/tonemap/EetfTest.h"
#include "tonemap/Bt2390.h"

namespace {

using tonemap::Eetf;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::Pixel;

Pixel MapPixel(const Pixel& pixel, const Eetf& eetf, float referenceWhite = 1.0F) {
  return tonemap::Map<Quillon::Bt2390RGBByChannelToneMap>(
      pixel, tonemap::Bt2390Params(eetf, referenceWhite), {});
}

TEST(Bt2390ByChannel, LeavesThePixelToTheDesaturationWhenTheKneeStartsAt1OrAbove) {
  // The tables would turn light below a nit into black.
  for (const float kneeStart : {1.0F, std::nextafter(1.0F, 2.0F), 2.5F}) {
    ExpectBits(MapPixel({0.25F, 0.75F, 0.1F, 1.0F}, {.kneeStart = kneeStart}),
               {0.25F, 0.75F, 0.1F, 1.0F});
  }
}

TEST(Bt2390ByChannel, MapsWhenTheKneeStartsJustBelow1) {
  ExpectBits(MapPixel({0.25F, 0.75F, 0.1F, 1.0F}, {.kneeStart = std::nextafter(1.0F, 0.0F)}),
             {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(Bt2390ByChannel, LeavesAChannelOf0At0ThoughOthersAreLifted) {
  const Pixel pixel = MapPixel({0.0F, 100.0F, -0.0F, 1.0F}, {.minLum = 0.125F});
  ExpectWithinUlps(pixel, {0.0F, 107.465157F, 0.0F, 1.0F});
}

TEST(Bt2390ByChannel, LiftsAChannelOf1Nit) {
  // 0.8500543^4 x 0.125 + 0.1499457 = 0.2152135.
  EXPECT_FLOAT_EQ(MapPixel({1.0F, 0.0F, 0.0F, 1.0F}, {.minLum = 0.125F})[0], 3.08415127F);
}

TEST(Bt2390ByChannel, CapsEachSignalAt1) {
  // 1.99994 counts as 1, the last entry of the table; the dark channel is not concerned.
  ExpectWithinUlps(MapPixel({5000.0F, 5000.0F, 1.0F, 1.0F}, {.kneeStart = 0.5F, .maxLum = 2.0F}),
                   {9988.34473F, 9988.34473F, tonemap::k1NitByTables, 1.0F});
}

TEST(Bt2390ByChannel, EncodesAPixelAbove10000NitsExactly) {
  // The peak becomes maxLum; the other channels show light between two entries of the table.
  ExpectWithinUlps(
      MapPixel({10001.0F, 100.5F, 1.5F, 1.0F}, {.kneeStart = 0.625F, .maxLum = 0.75F}),
      {983.102539F, tonemap::k100p5NitsEncodedExactly, tonemap::k1p5NitsEncodedExactly, 1.0F});
}

TEST(Bt2390ByChannel, EncodesAPixelOf10000NitsByTheTable) {
  ExpectWithinUlps(MapPixel({10000.0F, 100.5F, 1.5F, 1.0F}, {.kneeStart = 0.625F, .maxLum = 0.75F}),
                   {983.102539F, tonemap::k100NitsByTables, tonemap::k1NitByTables, 1.0F});
}

TEST(Bt2390ByChannel, EncodesAPixelWithNegativeLightExactlyAndKeepsThatChannelBlack) {
  ExpectWithinUlps(
      MapPixel({-1.0F, 100.5F, 1.5F, 1.0F}, {}),
      {0.0F, tonemap::k100p5NitsEncodedExactly, tonemap::k1p5NitsEncodedExactly, 1.0F});
}

TEST(Bt2390ByChannel, CountsLightInUnitsOfReferenceWhite) {
  // 1.0078125 of 100 nits is entry 100 of the table.
  ExpectWithinUlps(
      MapPixel({1.0078125F, 10.0F, 0.0F, 1.0F}, {}, 100.0F),
      {tonemap::k100NitsByTables / 100.0F, tonemap::k1000NitsByTables / 100.0F, 0.0F, 1.0F});
}

TEST(Bt2390ByChannel, TurnsNaNIntoBlackAndLeavesTheOtherChannelsAlone) {
  for (const std::size_t channel : {0U, 1U, 2U}) {
    Pixel pixel = {100.0F, 100.0F, 100.0F, 1.0F};
    Pixel expected = {tonemap::k100NitsByTables, tonemap::k100NitsByTables,
                      tonemap::k100NitsByTables, 1.0F};
    pixel[channel] = tonemap::kNaN;
    expected[channel] = 0.0F;
    ExpectWithinUlps(MapPixel(pixel, {}), expected);
  }
}

TEST(Bt2390ByChannel, TurnsAHighlightWithoutAPlaceIntoBlack) {
  // Peak below threshold below pixel: the desaturation gives NaN, the tables black.
  Quillon::SupportVector params = tonemap::Bt2390Params({});
  params[9] = 200.0F;
  ExpectBits(tonemap::Map<Quillon::Bt2390RGBByChannelToneMap>({500.0F, 100.0F, 50.0F, 0.5F}, params,
                                                              {.peak = 100.0F}),
             {0.0F, 0.0F, 0.0F, 0.5F});
}

TEST(Bt2390ByChannel, WritesOnlyColorsWhateverTheyAre) {
  const Quillon::SupportVector params =
      tonemap::Bt2390Params({.kneeStart = 0.625F, .maxLum = 0.75F, .minLum = 0.125F}, 100.0F);
  const auto settings = tonemap::SettingsOf({.peak = 100.0F, .gain = 2.0F, .preservation = 0.5F});
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::Bt2390RGBByChannelToneMap{}(pixel, params, settings); });
}

}  // namespace
