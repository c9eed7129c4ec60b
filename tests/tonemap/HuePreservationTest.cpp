#include <cmath>

#include "tests/tonemap/CurveTest.h"
#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/HuePreservation.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using Quillon::SupportVector;
using testing::ElementsAre;
using testing::IsEmpty;
using tonemap::Controls;
using tonemap::ExpectBits;
using tonemap::ExpectWithinUlps;
using tonemap::kInfinity;
using tonemap::kNaN;
using tonemap::Pixel;

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

// The soft knee of these tests leads from a knee at 1 over a source peak of 4 to a destination peak
// of 2: k = 3 x 1 / 2 = 1.5, so that x at distance d above the knee comes to 1 + 1.5 d / (d + 1.5).

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

TEST(HuePreservingPixels, AppliesTheGainAloneWhenThePeaksAreEqual) {
  ExpectBits(MapPixel({4.0F, 0.5F, 1.5F, 1.0F}, {.gain = 2.0F}, {.destination = 4.0F}),
             {8.0F, 1.0F, 3.0F, 1.0F});
}

TEST(HuePreservingPixels, AppliesTheGainAloneWhenTheDestinationsPeakIsHigher) {
  ExpectBits(MapPixel({4.0F, 0.5F, 1.5F, 1.0F}, {.gain = 2.0F}, {.destination = 5.0F}),
             {8.0F, 1.0F, 3.0F, 1.0F});
}

TEST(HuePreservingPixels, AppliesTheGainAloneWhenTheSourcesPeakIsNotAboveTheKnee) {
  for (const float knee : {4.0F, 5.0F}) {
    ExpectBits(MapPixel({6.0F, 0.5F, 1.5F, 1.0F}, {.gain = 2.0F}, {.knee = knee}),
               {12.0F, 1.0F, 3.0F, 1.0F});
  }
}

TEST(HuePreservingPixels, AppliesTheGainAloneToAPixelAtTheKnee) {
  ExpectBits(MapPixel({0.5F, 0.25F, -2.0F, 1.0F}, {.gain = 2.0F}), {1.0F, 0.5F, -4.0F, 1.0F});
}

TEST(HuePreservingPixels, DoesNotStirTinyLightWhereThereIsNothingToCompress) {
  // Where the share is sought, channels as dark as this move a quarter of the way to the largest.
  // At the knee and between equal peaks it is not sought.
  const Pixel pixel = {4e-15F, 2e-15F, 1e-15F, 1.0F};
  ExpectBits(MapPixel(pixel, {}, {.knee = 4e-15F}), pixel);
  ExpectBits(MapPixel(pixel, {}, {.knee = 1e-15F, .destination = 4.0F}), pixel);
  EXPECT_NE(MapPixel(pixel, {}, {.knee = 1e-15F}), pixel);
}

TEST(HuePreservingPixels, MapsGreyByTheSoftKnee) {
  EXPECT_FLOAT_EQ(MapGrey(2.5F), 1.75F);
  EXPECT_FLOAT_EQ(MapGrey(1.75F), 1.5F);
}

TEST(HuePreservingPixels, MapsTheSourcesPeakOntoTheDestinations) { EXPECT_EQ(MapGrey(4.0F), 2.0F); }

TEST(HuePreservingPixels, GoesOnAboveTheSourcesPeakWithoutAClamp) {
  EXPECT_FLOAT_EQ(MapGrey(7.0F), 2.2F);
}

TEST(HuePreservingPixels, StartsWithASlopeOf1AtTheKnee) {
  // d - d^2 / 1.5 for a small distance d of 2^-10.
  EXPECT_NEAR(MapGrey(1.0F + 0x1p-10F), 1.0F + 0x1p-10F - 0x1p-20F / 1.5F, 1.2e-7F);
}

TEST(HuePreservingPixels, ScalesByTheSmallestRatioWhenColorIsFullyPreserved) {
  // Ratios 2 / 4, 1.75 / 2.5 and 1, the last of a channel below the knee.
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.preservation = 1.0F}),
             {2.0F, 1.25F, 0.25F, 1.0F});
}

TEST(HuePreservingPixels, GoesAsFarAsThePerChannelCurvesAllowWhenNoColorIsPreserved) {
  // From (2, 1.25, 0.25) towards 2 by the smaller of 0.5 / 0.75 and 0.25 / 1.75: the channel below
  // the knee has its own value back.
  ExpectWithinUlps(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {}),
                   {2.0F, 1.25F + 0.75F / 7.0F, 0.5F, 1.0F});
}

TEST(HuePreservingPixels, GoesHalfAsFarWhenHalfTheColorIsPreserved) {
  ExpectWithinUlps(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.preservation = 0.5F}),
                   {2.0F, 1.25F + 0.375F / 7.0F, 0.375F, 1.0F});
}

TEST(HuePreservingPixels, TakesAPreservationBeyondItsRangeForTheNearestEnd) {
  const Pixel pixel = {4.0F, 2.5F, 0.5F, 1.0F};
  ExpectBits(MapPixel(pixel, {.preservation = 3.0F}), MapPixel(pixel, {.preservation = 1.0F}));
  ExpectBits(MapPixel(pixel, {.preservation = -3.0F}), MapPixel(pixel, {.preservation = 0.0F}));
  EXPECT_NE(MapPixel(pixel, {.preservation = 3.0F}), MapPixel(pixel, {.preservation = -3.0F}));
}

TEST(HuePreservingPixels, KeepsARatioOf1ForAChannelAtTheKnee) {
  // The channel at the knee is scaled with the pixel and comes back as far as 1 - 0.5 of 2 - 0.5.
  ExpectBits(MapPixel({4.0F, 1.0F, 4.0F, 1.0F}, {.preservation = 1.0F}), {2.0F, 0.5F, 2.0F, 1.0F});
  ExpectWithinUlps(MapPixel({4.0F, 1.0F, 4.0F, 1.0F}, {}), {2.0F, 1.0F, 2.0F, 1.0F});
}

TEST(HuePreservingPixels, TreatsTheThreeChannelsAlike) {
  const Pixel pixel = MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.preservation = 0.25F});
  ExpectBits(MapPixel({0.5F, 4.0F, 2.5F, 1.0F}, {.preservation = 0.25F}),
             {pixel[2], pixel[0], pixel[1], 1.0F});
}

TEST(HuePreservingPixels, TakesAKneeOf0OrLessForATinyOne) {
  // k = 4 x 2 / 2 = 4: 4 comes to 4 x 4 / 8 = 2, and 1 to 4 / 5.
  for (const float knee : {0.0F, -1.0F, -kInfinity}) {
    EXPECT_FLOAT_EQ(MapGrey(4.0F, {.knee = knee}), 2.0F) << knee;
    EXPECT_FLOAT_EQ(MapGrey(1.0F, {.knee = knee}), 0.8F) << knee;
  }
}

TEST(HuePreservingPixels, AppliesTheGainAloneWhenTheKneeIsNaN) {
  // A floor that swallowed NaN would go on with a knee of 1e-15.
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.gain = 2.0F}, {.knee = kNaN}),
             {8.0F, 5.0F, 1.0F, 1.0F});
}

TEST(HuePreservingPixels, AppliesTheGainAloneWhenAPeakIsNaN) {
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.gain = 2.0F}, {.source = kNaN}),
             {8.0F, 5.0F, 1.0F, 1.0F});
  ExpectBits(MapPixel({4.0F, 2.5F, 0.5F, 1.0F}, {.gain = 2.0F}, {.destination = kNaN}),
             {8.0F, 5.0F, 1.0F, 1.0F});
}

TEST(HuePreservingPixels, AppliesTheGainAloneWhenTheFirstChannelIsNaN) {
  const Pixel pixel = MapPixel({kNaN, 4.0F, 0.5F, 1.0F}, {.gain = 2.0F});
  EXPECT_TRUE(std::isnan(pixel[0]));
  EXPECT_EQ(pixel[1], 8.0F);
  EXPECT_EQ(pixel[2], 1.0F);
}

TEST(HuePreservingPixels, KeepsANaNThatIsNotFirstToItsOwnChannel) {
  const Pixel pixel = MapPixel({4.0F, kNaN, 0.5F, 1.0F}, {});
  EXPECT_EQ(pixel[0], 2.0F);
  EXPECT_TRUE(std::isnan(pixel[1]));
  EXPECT_FLOAT_EQ(pixel[2], 0.5F);
}

TEST(HuePreservingPixels, WritesOnlyColorsWhateverTheyAre) {
  const auto settings = tonemap::SettingsOf({.gain = 2.0F, .preservation = 0.5F});
  const Quillon::SupportVector params = {4.0F, 1.0F, 2.0F};
  tonemap::ExpectOnlyColorsAreWritten(
      [&](float* pixel) { Quillon::HuePreservationToneMap{}(pixel, params, settings); });
}

}  // namespace
