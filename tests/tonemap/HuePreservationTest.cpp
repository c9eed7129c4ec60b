#include <cmath>

#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/HuePreservation.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using Quillon::SupportVector;
using testing::ElementsAre;
using testing::IsEmpty;

class HuePreservationParams : public tonemap::ToneMapTest {
 protected:
  void Build() { Quillon::GetHuePreservationSupportParams(settings, params); }
};

TEST_F(HuePreservationParams, AreScaledPeakAndKneeAndDestinationPeak) {
  SetDestination(scripted::Colors(9, 16, 1000));
  settings.controls.peak = 8.0F;
  settings.knee = 0.75F;
  host.results.convertSignalToLinear = [](const ColorSpace&, float signal) {
    EXPECT_NEAR(signal, tonemap::kPQ1000, 1e-6F);
    return 5.0F;
  };
  Build();
  EXPECT_THAT(params, ElementsAre(16.0F, 3.75F, 5.0F));
}

TEST_F(HuePreservationParams, TakeADefaultSignalOf1WithoutMetadata) {
  Build();
  EXPECT_THAT(host.Calls(),
              ElementsAre("PX::ColorSpaceUtils::IsNewColorManagementEnabled()",
                          "PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData("
                          "1/1, -1)",
                          "ToneMapControls::GetVersion(3)",
                          "CHR::ConvertSignalToLinearValue(1/1, white 100, 1)"));
  EXPECT_THAT(params, ElementsAre(1.5F, 0.5F, 1.0F));
}

TEST_F(HuePreservationParams, UseDefaultColorManagementBelowVersion3) {
  settings.controls.version = 2;
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignalToLinearValue"}),
              ElementsAre("CHR::ConvertSignalToLinearValue(1/1, white 203, 1)"));
}

TEST_F(HuePreservationParams, TakeADestinationPeakOf1WithoutTheNewColorManagement) {
  SetDestination(scripted::Colors(9, 16, 1000));
  host.results.newColorManagement = false;
  Build();
  EXPECT_THAT(params, ElementsAre(1.5F, 0.5F, 1.0F));
  EXPECT_THAT(host.CallsTo({"CHR::", "PX::ColorSpaceUtils::Get"}), IsEmpty());
}

TEST_F(HuePreservationParams, LetTheHostResolveTheAutomaticChoiceFromTheScaledPeak) {
  SetAlgorithm(1);
  settings.controls.peak = 8.0F;
  host.results.automaticChoice = [](float, ToneMapAlgorithmType& algorithm, float& knee) {
    algorithm = ToneMapAlgorithmType::CARToneCurve;
    knee = 0.25F;
  };
  Build();
  EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils"}),
              ElementsAre("PX::ToneMappingUtils::GetAdjustedToneMapAlgoAndKnee(16, 1, 0.5)"));
  EXPECT_EQ(settings.algorithmType, ToneMapAlgorithmType::CARToneCurve);
  EXPECT_EQ(settings.knee, 0.25F);
  EXPECT_THAT(params, ElementsAre(16.0F, 0.25F, 1.0F)) << "whatever was chosen";
}

TEST_F(HuePreservationParams, LeaveTheChoiceAloneWhenItIsMade) {
  Build();
  EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils"}), IsEmpty());
}

TEST_F(HuePreservationParams, AreEmptiedFirst) {
  host.FailWithException("PX::ColorSpaceUtils::IsNewColorManagementEnabled");
  EXPECT_THROW(Build(), scripted::HostException);
  EXPECT_THAT(params, ElementsAre(1.5F));
}

class HuePreservationCurve : public tonemap::ToneMapTest {
 protected:
  using Pixel = std::array<float, 4>;

  /// Source peak 10, knee 0.5, destination peak 1.
  Pixel Map(Pixel pixel, float preservation, const SupportVector& vector) {
    settings.controls.peakGain = 1.0F;
    settings.controls.colorPreservation = preservation;
    Quillon::HuePreservationToneMap{}(pixel.data(), vector, settings);
    return pixel;
  }
  Pixel Map(Pixel pixel, float preservation) {
    return Map(pixel, preservation, {10.0F, 0.5F, 1.0F});
  }
};

TEST_F(HuePreservationCurve, AppliesOnlyTheGainWhenTheDestinationIsNoDarker) {
  settings.controls.peakGain = 2.0F;
  Pixel pixel = {1.0F, 20.0F, 3.0F, 0.25F};
  Quillon::HuePreservationToneMap{}(pixel.data(), {10.0F, 0.5F, 10.0F}, settings);
  EXPECT_EQ(pixel, (Pixel{2.0F, 40.0F, 6.0F, 0.25F}));
}

TEST_F(HuePreservationCurve, LeavesPixelsUpToTheKneeAlone) {
  EXPECT_EQ(Map({0.5F, 0.25F, -1.0F, 1.0F}, 0.5F), (Pixel{0.5F, 0.25F, -1.0F, 1.0F}));
}

TEST_F(HuePreservationCurve, MapsTheSourcePeakOntoTheDestinationPeak) {
  for (const float preservation : {0.0F, 0.5F, 1.0F}) {
    const Pixel pixel = Map({10.0F, 10.0F, 10.0F, 1.0F}, preservation);
    for (int channel = 0; channel < 3; ++channel) {
      EXPECT_NEAR(pixel[static_cast<std::size_t>(channel)], 1.0F, 1e-6F);
    }
  }
}

TEST_F(HuePreservationCurve, KeepsTheRatiosWhenColorIsFullyPreserved) {
  const Pixel pixel = Map({8.0F, 4.0F, 2.0F, 1.0F}, 1.0F);
  EXPECT_LT(pixel[0], 1.0F);
  EXPECT_NEAR(pixel[1] / pixel[0], 0.5F, 1e-6F);
  EXPECT_NEAR(pixel[2] / pixel[0], 0.25F, 1e-6F);
}

TEST_F(HuePreservationCurve, ScalesByTheSmallestRatioThoughAChannelLiesUnderTheKnee) {
  const Pixel pixel = Map({8.0F, 0.25F, 0.125F, 1.0F}, 1.0F);
  EXPECT_LT(pixel[1], 0.25F);
  EXPECT_NEAR(pixel[2] / pixel[1], 0.5F, 1e-6F);
}

TEST_F(HuePreservationCurve, MovesTowardsTheLargestChannelTheLessColorIsPreserved) {
  const Pixel none = Map({8.0F, 4.0F, 2.0F, 1.0F}, 0.0F);
  const Pixel half = Map({8.0F, 4.0F, 2.0F, 1.0F}, 0.5F);
  const Pixel full = Map({8.0F, 4.0F, 2.0F, 1.0F}, 1.0F);
  EXPECT_GT(none[2], half[2]);
  EXPECT_GT(half[2], full[2]);
  EXPECT_EQ(none[0], full[0]);
}

TEST_F(HuePreservationCurve, NeverTouchesAlpha) {
  const float nan = std::nanf("");
  EXPECT_EQ(Map({8.0F, 4.0F, 2.0F, 77.0F}, 0.5F)[3], 77.0F);
  EXPECT_EQ(Map({nan, nan, nan, 77.0F}, 0.5F)[3], 77.0F);
}

}  // namespace
