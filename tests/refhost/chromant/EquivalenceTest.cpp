#include <gtest/gtest.h>

#include "host/chromant/Conversion.h"
#include "refhost/chromant/PixelConverter.h"
#include "refhost/orvmediatypes/H273.h"
#include "tests/refhost/chromant/Samples.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr int kIgnoreLuminanceMetadata = 2;
/// A planar format, as YCbCr pixels have.
constexpr PixelFormat kPlanar = {0x30323449U, 0x00000130U};

bool Equivalent(const ColorSpace& first, const ColorSpace& second,
                int matchFlag = kIgnoreLuminanceMetadata, PixelFormat format = kFloatBGRA) {
  const bool answer = CHR::AreColorSpacesEquivalent(first, format, second, format, matchFlag);
  EXPECT_EQ(answer, CHR::AreColorSpacesEquivalent(second, format, first, format, matchFlag));
  return answer;
}

ColorSpace ByCoordinates(const Chromaticities& chromaticities, int transfer) {
  return With(Space(RefHost::kUnspecifiedCodePoint, transfer), &ColorDescription::chromaticities,
              chromaticities);
}

}  // namespace

TEST(AreColorSpacesEquivalent, SaysYesToEqualSpaces) {
  EXPECT_TRUE(Equivalent(Space(9, 16), Space(9, 16)));
  EXPECT_TRUE(Equivalent(ColorSpace(), ColorSpace()));
}

TEST(AreColorSpacesEquivalent, SaysNoToOtherPrimariesOrTransfers) {
  EXPECT_FALSE(Equivalent(Space(9, 16), Space(12, 16)));
  EXPECT_FALSE(Equivalent(Space(9, 16), Space(9, 18)));
  EXPECT_FALSE(Equivalent(Space(1, 13), Space(1, 1)));
  EXPECT_FALSE(Equivalent(Space(9, 16), ColorSpace()));
  EXPECT_FALSE(Equivalent(Space(9, 2), Space(9, 3)));
}

TEST(AreColorSpacesEquivalent, TakesCodePointsThatMeanTheSameAsOne) {
  EXPECT_TRUE(Equivalent(Space(1, 1), Space(1, 6)));
  EXPECT_TRUE(Equivalent(Space(9, 14), Space(9, 15)));
  EXPECT_TRUE(Equivalent(Space(6, 13), Space(7, 13)));
}

TEST(AreColorSpacesEquivalent, IgnoresMatrixAndRangeOfRgbPixelsOnly) {
  const ColorSpace rgb = Space(9, 16);
  const ColorSpace withMatrix = With(rgb, &ColorDescription::matrix, std::uint8_t{9});
  const ColorSpace narrow = With(rgb, &ColorDescription::fullRange, false);
  const ColorSpace topLeft = With(rgb, &ColorDescription::chromaLocation, std::uint8_t{2});
  for (const ColorSpace& other : {withMatrix, narrow, topLeft}) {
    EXPECT_TRUE(Equivalent(rgb, other));
    EXPECT_FALSE(Equivalent(rgb, other, kIgnoreLuminanceMetadata, kPlanar));
    EXPECT_FALSE(
        CHR::AreColorSpacesEquivalent(rgb, kFloatBGRA, other, kPlanar, kIgnoreLuminanceMetadata));
  }
}

TEST(AreColorSpacesEquivalent, IgnoresLuminanceMetadataByFlagTwoOnly) {
  const ColorSpace plain = Space(9, 16);
  for (const ColorSpace& other :
       {Space(9, 16, 1000), With(plain, &ColorDescription::masteringMaxLuminance, 1000.0F),
        With(plain, &ColorDescription::masteringMinLuminance, 0.005F),
        With(plain, &ColorDescription::masteringChromaticities,
             *RefHost::ChromaticitiesOf(Space(12, 0)))}) {
    EXPECT_TRUE(Equivalent(plain, other));
    for (const int flag : {0, 1, 3}) EXPECT_FALSE(Equivalent(plain, other, flag));
  }
  EXPECT_TRUE(Equivalent(plain, plain, 0));
}

TEST(AreColorSpacesEquivalent, TakesCoordinatesEqualToACodePointsAsThatCodePoint) {
  Chromaticities bt2020 = *RefHost::ChromaticitiesOf(Space(9, 0));
  EXPECT_TRUE(Equivalent(ByCoordinates(bt2020, 16), Space(9, 16)));
  bt2020.red.x = static_cast<double>(static_cast<float>(bt2020.red.x));
  EXPECT_TRUE(Equivalent(ByCoordinates(bt2020, 16), Space(9, 16)));
  bt2020.red.x += 1e-4;
  EXPECT_FALSE(Equivalent(ByCoordinates(bt2020, 16), Space(9, 16)));
}

TEST(AreColorSpacesEquivalent, TellsOtherWhitePointsApart) {
  EXPECT_FALSE(Equivalent(Space(11, 8), Space(12, 8)));
}

TEST(PixelConverter, IsAnIdentityBetweenSpacesThatShowAlike) {
  const auto isIdentity = [](const ColorSpace& from, const ColorSpace& to) {
    return RefHost::MakePixelConverter(from, to, White(203))->IsIdentity();
  };
  EXPECT_TRUE(isIdentity(Space(9, 16), Space(9, 16, 1000)));
  EXPECT_TRUE(isIdentity(Space(1, 1), Space(1, 14)));
  EXPECT_TRUE(isIdentity(Space(9, 18), Space(9, 18, 1000)));
  EXPECT_FALSE(isIdentity(Space(9, 18), Space(9, 18, 600)));
  EXPECT_FALSE(isIdentity(Space(9, 16), Space(9, 8)));
  EXPECT_FALSE(isIdentity(Space(9, 8), Space(12, 8)));
}

TEST(PixelConverter, DoesNotExistForUnknownSpaces) {
  EXPECT_EQ(RefHost::MakePixelConverter(ColorSpace(), ColorSpace(), White(203)), nullptr);
  EXPECT_EQ(RefHost::MakePixelConverter(Space(9, 16), Space(9, 12), White(203)), nullptr);
  EXPECT_EQ(RefHost::MakePixelConverter(Space(3, 16), Space(9, 16), White(203)), nullptr);
}
