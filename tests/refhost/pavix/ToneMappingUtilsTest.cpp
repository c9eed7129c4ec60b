#include <limits>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/pavix/ToneMappingUtils.h"
#include "tests/refhost/Spaces.h"

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace PX::ToneMappingUtils {

namespace {

float KneeAt(float peak) {
  ToneMapAlgorithmType algorithm = ToneMapAlgorithmType::Automatic;
  float knee = 0.7F;
  GetAdjustedToneMapAlgoAndKnee(peak, algorithm, knee);
  EXPECT_EQ(algorithm, ToneMapAlgorithmType::HuePreservationDesaturation) << peak;
  return knee;
}

ToneMapSettings Settings(const ColorSpace& source, float peak) {
  ToneMapSettings settings;
  settings.sourceColorSpace = source;
  settings.controls.peak = peak;
  settings.colorManagementSettings = White(100);
  return settings;
}

}  // namespace

TEST(GetAdjustedToneMapAlgoAndKnee, PutsTheKneeAtAHalfForTwiceThePeakAndAQuarterForAHundredTimes) {
  EXPECT_FLOAT_EQ(KneeAt(2.0F), 0.5F);
  EXPECT_FLOAT_EQ(KneeAt(100.0F), 0.25F);
}

TEST(GetAdjustedToneMapAlgoAndKnee, LowersTheKneeAsThePeakRises) {
  float last = 1.0F;
  for (float peak = 0.01F; peak < 1e6F; peak *= 1.5F) {
    const float knee = KneeAt(peak);
    EXPECT_LT(knee, last) << peak;
    EXPECT_GT(knee, 0.0F) << peak;
    last = knee;
  }
}

TEST(GetAdjustedToneMapAlgoAndKnee, LeavesTheKneeWhereThePeakIsNoLight) {
  EXPECT_EQ(KneeAt(0.0F), 0.7F);
  EXPECT_EQ(KneeAt(-3.0F), 0.7F);
  EXPECT_EQ(KneeAt(std::numeric_limits<float>::quiet_NaN()), 0.7F);
}

TEST(GetAdjustedToneMapAlgoAndKnee, PutsTheKneeOfAnInfinitePeakAtZero) {
  EXPECT_EQ(KneeAt(std::numeric_limits<float>::infinity()), 0.0F);
}

TEST(AdjustToneMapSettingsVersion, IsTheVersionItself) {
  for (const int version : {-1, 0, 2, 3, 4}) {
    EXPECT_EQ(AdjustToneMapSettingsVersionForNCMVersionHandle(version), version);
  }
}

TEST(ConvertPeakLinearSignalToLuminance, IsInNitsWhateverTheWhite) {
  const ColorSpace pq = Space(9, 16);
  EXPECT_NEAR(ConvertPeakLinearSignalToLuminance(Settings(pq, 1.0F)), 10000.0F, 0.01F);
  EXPECT_NEAR(ConvertPeakLinearSignalToLuminance(Settings(pq, 0.751827096F)), 1000.0F, 0.01F);
  const ColorSpace hlg = Space(9, 18, 600);
  EXPECT_NEAR(ConvertPeakLinearSignalToLuminance(Settings(hlg, 1.0F)), 600.0F, 0.001F);
}

TEST(ConvertPeakLinearSignalToLuminance, CountsRelativeSignalsInGraphicsWhites) {
  const ColorSpace linear = Space(9, 8);
  EXPECT_FLOAT_EQ(ConvertPeakLinearSignalToLuminance(Settings(linear, 12.0F)), 1200.0F);
  const ColorSpace srgb = Space(1, 13);
  EXPECT_FLOAT_EQ(ConvertPeakLinearSignalToLuminance(Settings(srgb, 1.0F)), 100.0F);
}

TEST(ConvertPeakLinearSignalToLuminance, TakesThePeakOfAnEmptySourceAsLinear) {
  EXPECT_FLOAT_EQ(ConvertPeakLinearSignalToLuminance(Settings(ColorSpace(), 3.0F)), 300.0F);
}

TEST(ConvertPeakLinearSignalToLuminance, UsesDefaultColorManagementBelowVersionThree) {
  ToneMapSettings settings = Settings(Space(1, 13), 1.0F);
  settings.controls.version = 2;
  EXPECT_FLOAT_EQ(ConvertPeakLinearSignalToLuminance(settings), 203.0F);
}

TEST(GetLocalizedToneMappingMethodName, TellsTheMethodsApart) {
  std::set<std::string> names;
  for (int type = 0; type <= 6; ++type) {
    names.insert(GetLocalizedToneMappingMethodName(static_cast<ToneMapAlgorithmType>(type), 1));
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre(
                         "None", "Automatic", "BT.2390 (maximum of RGB)", "BT.2390 (each channel)",
                         "BT.2446 method A", "Hue-preserving desaturation", "CAR tone curve"));
}

TEST(GetLocalizedToneMappingMethodName, SaysTheNumberOfAnUnknownMethod) {
  EXPECT_EQ(GetLocalizedToneMappingMethodName(static_cast<ToneMapAlgorithmType>(7), 1),
            "Unknown tone-mapping method 7");
  EXPECT_THAT(GetLocalizedToneMappingMethodName(static_cast<ToneMapAlgorithmType>(-9), 1),
              testing::HasSubstr("-9"));
}

}  // namespace PX::ToneMappingUtils
