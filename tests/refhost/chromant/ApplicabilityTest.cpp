#include <limits>

#include <gtest/gtest.h>

#include "host/chromant/Applicability.h"
#include "refhost/orvmediatypes/H273.h"
#include "tests/refhost/chromant/Samples.h"

using CHR::IsGamutCompressionApplicable;
using CHR::IsGamutMappingApplicable;
using CHR::IsToneMappingApplicable;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

ToneMapSettings ToneMap(const ColorSpace& source, const ColorSpace& destination,
                        int algorithm = 5) {
  ToneMapSettings settings;
  settings.sourceColorSpace = source;
  settings.destinationColorSpace = destination;
  settings.algorithmType = static_cast<ToneMapAlgorithmType>(algorithm);
  return settings;
}

bool ToneMapApplies(const ColorSpace& source, const ColorSpace& destination, float peak = 1.0F,
                    float gain = 1.0F) {
  ToneMapSettings settings = ToneMap(source, destination);
  settings.controls.peak = peak;
  settings.controls.peakGain = gain;
  return IsToneMappingApplicable(settings);
}

GamutMappingSettings Gamut(const ColorSpace& source, const ColorSpace& destination,
                           int gamutAlgorithm, int toneAlgorithm = 0) {
  GamutMappingSettings settings;
  settings.algorithmType = static_cast<GamutCompressionAlgorithmType>(gamutAlgorithm);
  settings.toneMapSettings = ToneMap(source, destination, toneAlgorithm);
  return settings;
}

}  // namespace

TEST(IsToneMappingApplicable, IsTrueForEveryAlgorithmButNone) {
  for (const int algorithm : {1, 2, 3, 4, 5, 6}) {
    EXPECT_TRUE(IsToneMappingApplicable(ToneMap(Space(9, 16), Space(1, 13), algorithm)));
    EXPECT_FALSE(IsToneMappingApplicable(ToneMap(Space(1, 13), Space(9, 16), algorithm)));
  }
  EXPECT_FALSE(IsToneMappingApplicable(ToneMap(Space(9, 16), Space(1, 13), 0)));
}

TEST(IsToneMappingApplicable, LeavesUnknownAlgorithmsToBeRefusedWhateverThePeaks) {
  for (const int algorithm : {7, -1, std::numeric_limits<int>::max()}) {
    EXPECT_TRUE(IsToneMappingApplicable(ToneMap(Space(1, 13), Space(9, 16), algorithm)));
    EXPECT_TRUE(IsToneMappingApplicable(ToneMap(ColorSpace(), ColorSpace(), algorithm)));
  }
}

TEST(IsToneMappingApplicable, NeedsASourcePeakAboveTheDestinations) {
  EXPECT_TRUE(ToneMapApplies(Space(9, 16), Space(9, 18)));
  EXPECT_FALSE(ToneMapApplies(Space(9, 18), Space(9, 16)));
  EXPECT_FALSE(ToneMapApplies(Space(9, 16), Space(9, 16)));
  EXPECT_FALSE(ToneMapApplies(Space(1, 1), Space(9, 14)));
  EXPECT_TRUE(ToneMapApplies(Space(9, 8), Space(1, 13), 1.1F));
  EXPECT_FALSE(ToneMapApplies(Space(9, 8), Space(1, 13), 1.0F));
}

TEST(IsToneMappingApplicable, ComparesWithThePeakOfTheDestinationsMetadata) {
  EXPECT_TRUE(ToneMapApplies(Space(9, 16), Space(9, 16, 1000)));
  EXPECT_TRUE(ToneMapApplies(Space(9, 18, 2000), Space(9, 16, 1999)));
  EXPECT_FALSE(ToneMapApplies(Space(9, 18, 2000), Space(9, 16, 2001)));
  EXPECT_TRUE(ToneMapApplies(
      Space(9, 16), With(Space(9, 16), &ColorDescription::masteringMaxLuminance, 4000.0F)));
}

TEST(IsToneMappingApplicable, TakesPeaksThatDifferByRoundingAsEqual) {
  for (const int nits : {400, 600, 1000, 2000, 4000}) {
    EXPECT_FALSE(ToneMapApplies(Space(9, 18, nits), Space(9, 16, nits))) << nits;
  }
  EXPECT_FALSE(ToneMapApplies(Space(9, 16), Space(9, 16, 1000), 0.7518271F));
}

TEST(IsToneMappingApplicable, CountsTheGain) {
  EXPECT_TRUE(ToneMapApplies(Space(1, 13), Space(1, 13), 1.0F, 1.5F));
  EXPECT_FALSE(ToneMapApplies(Space(9, 18), Space(1, 13), 1.0F, 0.2F));
}

TEST(IsToneMappingApplicable, CountsRelativePeaksInGraphicsWhitesOfTheRecordFromVersionThree) {
  ToneMapSettings settings = ToneMap(Space(9, 8), Space(9, 18));
  settings.controls.peak = 4.0F;
  settings.colorManagementSettings = White(300);
  EXPECT_TRUE(IsToneMappingApplicable(settings));
  settings.controls.version = 2;  // 4 times 203 nits
  EXPECT_FALSE(IsToneMappingApplicable(settings));
}

TEST(IsToneMappingApplicable, TakesUnknownSpacesAsLinear) {
  EXPECT_TRUE(ToneMapApplies(ColorSpace(), ColorSpace(), 2.0F));
  EXPECT_FALSE(ToneMapApplies(ColorSpace(), ColorSpace(), 1.0F));
}

TEST(IsToneMappingApplicable, IsFalseForAPeakThatIsNoNumber) {
  EXPECT_FALSE(ToneMapApplies(Space(9, 8), Space(1, 13), std::numeric_limits<float>::quiet_NaN()));
}

TEST(IsGamutCompressionApplicable, NeedsASourcePrimaryOutsideTheDestination) {
  for (const int algorithm : {1, 2}) {
    EXPECT_TRUE(IsGamutCompressionApplicable(Gamut(Space(9, 16), Space(1, 13), algorithm)));
    EXPECT_TRUE(IsGamutCompressionApplicable(Gamut(Space(12, 13), Space(1, 13), algorithm)));
    EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(Space(1, 13), Space(9, 16), algorithm)));
    EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(Space(1, 13), Space(12, 13), algorithm)));
    EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(Space(9, 16), Space(9, 14), algorithm)));
  }
}

TEST(IsGamutCompressionApplicable, CountsCoordinatesEqualToTheDestinationsAsInside) {
  auto coordinates = *RefHost::ChromaticitiesOf(Space(9, 0));
  coordinates.green.y = static_cast<double>(static_cast<float>(coordinates.green.y));
  const ColorSpace source = With(Space(RefHost::kUnspecifiedCodePoint, 8),
                                 &ColorDescription::chromaticities, coordinates);
  EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(source, Space(9, 16), 1)));
}

TEST(IsGamutCompressionApplicable, IsFalseWithoutAnAlgorithmAndWithoutKnownPrimaries) {
  EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(Space(9, 16), Space(1, 13), 0)));
  EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(ColorSpace(), Space(1, 13), 1)));
  EXPECT_FALSE(IsGamutCompressionApplicable(Gamut(Space(9, 16), ColorSpace(), 1)));
}

TEST(IsGamutCompressionApplicable, LeavesUnknownAlgorithmsToBeRefused) {
  for (const int algorithm : {3, 7, -1}) {
    EXPECT_TRUE(IsGamutCompressionApplicable(Gamut(Space(1, 13), Space(9, 16), algorithm)));
  }
}

TEST(IsGamutMappingApplicable, IsTrueWhenEitherStepIs) {
  const ColorSpace wide = Space(9, 16);
  const ColorSpace small = Space(1, 13);
  EXPECT_FALSE(IsGamutMappingApplicable(Gamut(wide, small, 0, 0)));
  EXPECT_TRUE(IsGamutMappingApplicable(Gamut(wide, small, 1, 0)));
  EXPECT_TRUE(IsGamutMappingApplicable(Gamut(wide, small, 0, 5)));
  EXPECT_TRUE(IsGamutMappingApplicable(Gamut(wide, small, 1, 5)));
  EXPECT_FALSE(IsGamutMappingApplicable(Gamut(small, wide, 1, 5)));
  EXPECT_TRUE(IsGamutMappingApplicable(Gamut(small, wide, 7, 0)));
  EXPECT_TRUE(IsGamutMappingApplicable(Gamut(small, wide, 0, 7)));
}
