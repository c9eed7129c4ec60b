#include <cmath>

#include "tests/tonemap/EetfTest.h"
#include "tonemap/Bt2390.h"

namespace {

using tonemap::Eetf;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::Pixel;

Pixel MapPixel(const Pixel& pixel, const Eetf& eetf) {
  return tonemap::Map<Quillon::Bt2390MaxRGBToneMap>(pixel, tonemap::Bt2390Params(eetf), {});
}

TEST(Bt2390MaxRGB, LeavesThePixelToTheDesaturationWhenTheKneeStartsAt1OrAbove) {
  for (const float kneeStart : {1.0F, std::nextafter(1.0F, 2.0F), 2.5F}) {
    ExpectBits(MapPixel({0.25F, 0.75F, 0.1F, 1.0F}, {.kneeStart = kneeStart, .minLum = 0.125F}),
               {0.25F, 0.75F, 0.1F, 1.0F});
  }
}

TEST(Bt2390MaxRGB, MapsWhenTheKneeStartsJustBelow1) {
  ExpectBits(MapPixel({0.25F, 0.75F, 0.1F, 1.0F}, {.kneeStart = std::nextafter(1.0F, 0.0F)}),
             {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(Bt2390MaxRGB, TurnsBlackIntoTheDestinationsBlack) {
  // 0.125 as a PQ code value, entry 1023.
  ExpectWithinUlps(MapPixel({0.0F, 0.0F, 0.0F, 1.0F}, {.minLum = 0.125F}),
                   {0.592475474F, 0.592475474F, 0.592475474F, 1.0F});
}

TEST(Bt2390MaxRGB, TurnsAChannelAtSourceBlackIntoTheDestinationsBlack) {
  // 0.25 x 0.75 + 0.1499457 = 0.3374457. One nit more is above source black and stays.
  ExpectWithinUlps(
      MapPixel({1.0F, 2.0F, 1000.0F, 1.0F},
               {.minLum = 0.25F, .sourceBlack = tonemap::kPQ1Nit, .sourceRange = 0.75F}),
      {15.8957329F, tonemap::k2NitsByTables, tonemap::k1000NitsByTables, 1.0F});
}

TEST(Bt2390MaxRGB, KeepsBlackBlackWhereNothingIsLifted) {
  ExpectBits(MapPixel({0.0F, 0.0F, 0.0F, 1.0F}, {}), {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(Bt2390MaxRGB, ScalesAllSignalsByTheRatioOfTheLargest) {
  // 0.4909452 / 0.7518271 = 0.6530028 for 1000 nits; 100 nits come to 0.3317766.
  ExpectWithinUlps(MapPixel({100.0F, 1000.0F, 0.0F, 1.0F}, {.kneeStart = 0.25F, .maxLum = 0.5F}),
                   {14.8414516F, 84.1861038F, 0.0F, 1.0F});
}

TEST(Bt2390MaxRGB, CapsTheRatioAt1) {
  // The largest signal would go from 0.9265 to 1.99994.
  ExpectWithinUlps(
      MapPixel({5000.0F, 1000.0F, 100.0F, 1.0F}, {.kneeStart = 0.5F, .maxLum = 2.0F}),
      {tonemap::k5000NitsByTables, tonemap::k1000NitsByTables, tonemap::k100NitsByTables, 1.0F});
}

TEST(Bt2390MaxRGB, TakesANegativeRatioFor0) {
  // 0.85^4 x -4 + 0.15 lies below 0; the colours come to black and not to negative signals.
  ExpectBits(MapPixel({1.0F, 1.0F, 1.0F, 1.0F}, {.minLum = -4.0F}), {0.0F, 0.0F, 0.0F, 1.0F});
}

TEST(Bt2390MaxRGB, EncodesAPixelAbove10000NitsExactly) {
  // A ratio of 0.75 / 1.00001; the other channels show light between two entries of the table.
  ExpectWithinUlps(MapPixel({10001.0F, 100.5F, 1.5F, 1.0F}, {.kneeStart = 0.625F, .maxLum = 0.75F}),
                   {983.102539F, 26.4003353F, 0.644138873F, 1.0F});
}

TEST(Bt2390MaxRGB, DecodesAPixelWithASignalAbove1Exactly) {
  // Encoded and decoded exactly with a ratio of 1: what goes in comes out.
  ExpectWithinUlps(MapPixel({20000.0F, 100.5F, 1.5F, 1.0F}, {.maxLum = 2.0F}),
                   {19999.9922F, 100.5F, 1.5F, 1.0F});
}

TEST(Bt2390MaxRGB, EncodesAPixelWithNegativeLightExactly) {
  ExpectWithinUlps(
      MapPixel({100.5F, -1.0F, 1.5F, 1.0F}, {}),
      {tonemap::k100p5NitsEncodedExactly, 0.0F, tonemap::k1p5NitsEncodedExactly, 1.0F});
}

TEST(Bt2390MaxRGB, TurnsNaNIntoBlackAndLeavesTheOtherChannelsAlone) {
  for (const std::size_t channel : {0U, 1U, 2U}) {
    Pixel pixel = {100.0F, 100.0F, 100.0F, 1.0F};
    Pixel expected = {tonemap::k100NitsByTables, tonemap::k100NitsByTables,
                      tonemap::k100NitsByTables, 1.0F};
    pixel[channel] = tonemap::kNaN;
    expected[channel] = 0.0F;
    ExpectWithinUlps(MapPixel(pixel, {}), expected);
  }
}

TEST(Bt2390MaxRGB, LetsARatioThatIsNaNPassIntoBlack) {
  ExpectBits(
      MapPixel({5000.0F, 1000.0F, 100.0F, 0.5F}, {.kneeStart = 0.5F, .maxLum = tonemap::kNaN}),
      {0.0F, 0.0F, 0.0F, 0.5F});
}

TEST(Bt2390MaxRGB, WritesOnlyColorsWhateverTheyAre) {
  const Quillon::SupportVector params =
      tonemap::Bt2390Params({.kneeStart = 0.625F, .maxLum = 0.75F, .minLum = 0.125F});
  const auto settings = tonemap::SettingsOf({.peak = 100.0F, .gain = 2.0F, .preservation = 0.5F});
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::Bt2390MaxRGBToneMap{}(pixel, params, settings); });
}

}  // namespace
