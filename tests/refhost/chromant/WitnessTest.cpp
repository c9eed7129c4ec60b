#include <gtest/gtest.h>

#include "refhost/orvmediatypes/H273.h"
#include "tests/refhost/chromant/Samples.h"
#include "tests/refhost/chromant/Witnesses.h"

// zimg and OpenColorIO know nothing of this code: where all agree, all are right.

namespace {

constexpr double kTolerance = 1e-5;
constexpr std::uint32_t kWhite = 203;

std::vector<Rgb> Scaled(std::vector<Rgb> pixels, float factor) {
  for (Rgb& pixel : pixels) {
    for (float& channel : pixel) channel *= factor;
  }
  return pixels;
}

void ExpectAsZimg(const std::vector<Rgb>& pixels, Cicp from, Cicp to, double tolerance) {
  SCOPED_TRACE(testing::Message() << int{from.primaries} << '/' << int{from.transfer} << " to "
                                  << int{to.primaries} << '/' << int{to.transfer});
  ExpectNear(
      Converted(pixels, Space(from.primaries, from.transfer), Space(to.primaries, to.transfer)),
      ConvertedByZimg(pixels, from, to, kWhite), tolerance);
}

/// Full-range integers through `CHR::ConvertFrame`; at most one code value from zimg's.
template <class Component>
void ExpectIntegersAsZimg(Cicp from, Cicp to) {
  SCOPED_TRACE(testing::Message() << int{from.primaries} << '/' << int{from.transfer} << " to "
                                  << int{to.primaries} << '/' << int{to.transfer});
  const auto pixels = IntegerLattice<Component>(16);
  const auto actual = ConvertedIntegers(pixels, Space(from.primaries, from.transfer),
                                        Space(to.primaries, to.transfer));
  const auto expected = ConvertedByZimg(pixels, from, to, kWhite);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(actual[i][c], expected[i][c], 1) << i;
  }
}

}  // namespace

TEST(ConvertFrame, DecodesTransfersAsZimgDoes) {
  for (const std::uint8_t transfer : {1, 4, 5, 6, 11, 14, 15, 18}) {
    ExpectAsZimg(Lattice(16), {9, transfer}, {9, 8}, kTolerance);
  }
}

TEST(ConvertFrame, EncodesTransfersAsZimgDoes) {
  for (const std::uint8_t transfer : {1, 4, 5, 6, 11, 14, 15, 18}) {
    ExpectAsZimg(Lattice(16), {9, 8}, {9, transfer}, kTolerance);
  }
}

TEST(ConvertFrame, MatchesZimgsPQToTheAccuracyOfItsSinglePrecision) {
  constexpr double kSinglePrecisionPQ = 5e-5;
  ExpectAsZimg(Lattice(16), {9, 16}, {9, 8}, kSinglePrecisionPQ);
  ExpectAsZimg(Lattice(16), {9, 8}, {9, 16}, kTolerance);
}

TEST(ConvertFrame, ConvertsPQAsOpenColorIODoes) {
  constexpr std::uint32_t kOcioWhite = 100;
  const auto pixels = Lattice(16);
  ExpectNear(Converted(pixels, Space(9, 16), Space(9, 8), kOcioWhite),
             ThroughOcioBuiltin(pixels, "CURVE - ST-2084_to_LINEAR"), kTolerance);
  // From 0.1 nits: of black itself the two make different signals, 0 here.
  const auto light = Lattice(16, 0.001F, 100.0F);
  ExpectNear(Converted(light, Space(9, 8), Space(9, 16), kOcioWhite),
             ThroughOcioBuiltin(light, "CURVE - LINEAR_to_ST-2084"), kTolerance);
}

TEST(ConvertFrame, ConvertsHlgAsOpenColorIODoes) {
  // Light that stays within signals of 0 to 1, where the witness clamps; as XYZ, which it takes.
  const auto light = Lattice(8, 0.05F, 5.0F);
  std::vector<Rgb> xyz;
  for (const Rgb& p : light) {
    xyz.push_back({0.636958048F * p[0] + 0.144616904F * p[1] + 0.168880975F * p[2],
                   0.262700212F * p[0] + 0.677998072F * p[1] + 0.059301716F * p[2],
                   0.028072693F * p[1] + 1.060985058F * p[2]});
  }
  ExpectNear(Converted(light, Space(9, 8), Space(9, 18), 100),
             ThroughOcioBuiltin(xyz, "DISPLAY - CIE-XYZ-D65_to_REC.2100-HLG-1000nit"), kTolerance);
}

TEST(ConvertFrame, DecodesPowersAsOpenColorIODoesOnBothSidesOfZero) {
  const auto pixels = Lattice(16, -1.5F, 1.5F);
  const auto decoded = [&](std::uint8_t transfer) {
    return Converted(pixels, Space(1, transfer), Space(1, 8));
  };
  ExpectNear(decoded(RefHost::kTransferBT709), ThroughOcioPower(pixels, 2.4), kTolerance);
  ExpectNear(decoded(RefHost::kTransferGamma22), ThroughOcioPower(pixels, 2.2), kTolerance);
  ExpectNear(decoded(RefHost::kTransferGamma28), ThroughOcioPower(pixels, 2.8), kTolerance);
  ExpectNear(decoded(RefHost::kTransferST428),
             Scaled(ThroughOcioPower(pixels, 2.6), 52.37F / 48.0F), kTolerance);
}

TEST(ConvertFrame, DecodesTheCurvedPartOfSrgbAsOpenColorIODoes) {
  const auto pixels = Lattice(16, 0.04046F, 1.0F);
  ExpectNear(Converted(pixels, Space(1, 13), Space(1, 8)),
             ThroughOcioMonitorCurve(pixels, 2.4, 0.055), kTolerance);
}

TEST(ConvertFrame, DecodesTheStraightPartOfSrgbAsZimgDoes) {
  ExpectAsZimg(Lattice(16, 0.0F, 0.039F), {1, 13}, {1, 8}, kTolerance);
}

TEST(ConvertFrame, DecodesSmpte240MAsOpenColorIODoes) {
  const auto pixels = Lattice(32);
  ExpectNear(Converted(pixels, Space(7, 7), Space(7, 8)),
             ThroughOcioMonitorCurve(pixels, 1.0 / 0.45, 0.1115721959217312), kTolerance);
}

TEST(ConvertFrame, ConvertsPrimariesAsZimgDoes) {
  for (const std::uint8_t from : {1, 4, 5, 6, 7, 8, 9, 11, 12, 22}) {
    for (const std::uint8_t to : {1, 9, 11, 12}) {
      ExpectAsZimg(Lattice(8), {from, 8}, {to, 8}, kTolerance);
    }
  }
}

TEST(ConvertFrame, AdaptsWhitePointsAsOpenColorIODoes) {
  const auto pixels = Lattice(8);
  const orvmediatypes::color::Chromaticities acesAP1 = {
      {0.713, 0.293}, {0.165, 0.830}, {0.128, 0.044}, {0.32168, 0.33767}};
  const auto source = With(Space(RefHost::kUnspecifiedCodePoint, 8),
                           &orvmediatypes::color::ColorDescription::chromaticities, acesAP1);
  ExpectNear(Converted(pixels, source, Space(1, 8)),
             ThroughOcioBuiltin(pixels, "UTILITY - ACES-AP1_to_LINEAR-REC709_BFD"), kTolerance);
}

TEST(ConvertFrame, ConvertsWholeChainsAsZimgDoes) {
  ExpectAsZimg(Lattice(8), {12, 4}, {9, 16}, kTolerance);
  ExpectAsZimg(Lattice(8), {1, 1}, {9, 18}, kTolerance);
  ExpectAsZimg(Lattice(8), {9, 18}, {9, 16}, kTolerance);
}

TEST(ConvertFrame, Converts16BitIntegersAsZimgDoes) {
  ExpectIntegersAsZimg<std::uint16_t>({9, 18}, {1, 1});
  ExpectIntegersAsZimg<std::uint16_t>({12, 4}, {9, 14});
  ExpectIntegersAsZimg<std::uint16_t>({1, 1}, {9, 16});
}

TEST(ConvertFrame, Converts8BitIntegersAsZimgDoes) {
  ExpectIntegersAsZimg<std::uint8_t>({9, 16}, {1, 13});
  ExpectIntegersAsZimg<std::uint8_t>({1, 13}, {12, 4});
  ExpectIntegersAsZimg<std::uint8_t>({1, 1}, {9, 18});
}
