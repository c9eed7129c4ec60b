#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mapper/Plan.h"

using Quillon::Mapper::Algorithm;
using Quillon::Mapper::Code;
using Quillon::Mapper::ColorSpaceOfCicp;
using Quillon::Mapper::ColorSpaceOfName;
using Quillon::Mapper::Decisions;
using Quillon::Mapper::GamutAlgorithm;
using Quillon::Mapper::Plan;
using Quillon::Mapper::Settings;
using Quillon::Mapper::Source;
using Quillon::Mapper::Target;
using testing::HasSubstr;

namespace {

const Source kPQ{*ColorSpaceOfName("bt2100-pq"), {}};
const Target kSrgb{*ColorSpaceOfName("srgb"), {}};

Decisions Decided(const Source& source, const Target& target, const Settings& settings) {
  const auto plan = Plan::Make(source, target, settings);
  EXPECT_TRUE(plan) << (plan ? "" : plan.error().message);
  return plan ? plan->Decide() : Decisions{};
}

TEST(APlan, TakesThePeakOfTheMetadataBeforeTheTransfers) {
  Source source = kPQ;
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.nits, 10000.0);
  source.colors.masteringMaxLuminance = 4000.0F;
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.nits, 4000.0);
  source.light.maxCLL = 650.0F;
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.nits, 650.0);
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.origin, "MaxCLL of the file");
}

TEST(APlan, IsNotMadeFromLightLevelsThatCannotBe) {
  Source source = kPQ;
  source.colors.masteringMaxLuminance = 49.0F;
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.nits, 10000.0);
  source.colors.masteringMaxLuminance = 600.0F;
  source.light = {300.0F, 301.0F};
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.nits, 600.0);
  source.light.maxFALL = 601.0F;
  EXPECT_EQ(Decided(source, kSrgb, {}).sourcePeak.nits, 10000.0);
  EXPECT_THAT(Quillon::Mapper::BelieveLight(source).ignored,
              testing::ElementsAre("a MaxCLL of 300 nits (less than MaxFALL, 601)",
                                   "a mastering display of 600 nits (less than MaxFALL, 601)"));
}

TEST(APlan, KnowsNoPeakOfSceneLinearLight) {
  const auto plan = Plan::Make({*ColorSpaceOfCicp("9/8/0"), {}}, kSrgb, {});
  ASSERT_FALSE(plan);
  EXPECT_EQ(plan.error().code, Code::UnknownPeak);
  EXPECT_TRUE(Plan::Make({*ColorSpaceOfCicp("9/8/0"), {}}, kSrgb, {}, {1000.0, "measured"}));
}

TEST(APlan, NeedsColoursThatAreTold) {
  const auto plan = Plan::Make({*ColorSpaceOfCicp("2/2/2"), {}}, kSrgb, {});
  ASSERT_FALSE(plan);
  EXPECT_EQ(plan.error().code, Code::UnknownColors);
  EXPECT_THAT(plan.error().message, HasSubstr("CICP 2/2/2"));
}

TEST(APlan, BlamesASourceThatCannotBeConvertedAndNotTheDestination) {
  const auto plan = Plan::Make({*ColorSpaceOfCicp("9/200/9"), {}}, kSrgb, {}, {1000.0, "given"});
  ASSERT_FALSE(plan);
  EXPECT_EQ(plan.error().code, Code::NotSupported);
  EXPECT_EQ(plan.error().message, "no conversion from CICP 9/200/9");
}

TEST(APlan, NamesADestinationThatCannotBeReached) {
  const auto plan = Plan::Make(kPQ, {*ColorSpaceOfCicp("9/200/9"), {}}, {});
  ASSERT_FALSE(plan);
  EXPECT_EQ(plan.error().code, Code::NotSupported);
  EXPECT_THAT(plan.error().message, HasSubstr("CICP 9/200/9"));
}

TEST(APlan, RefusesAPeakThatItsSourceCannotExpress) {
  const Source linear{*ColorSpaceOfCicp("9/8/0"), {}};
  const auto plan = Plan::Make(linear, kSrgb, {}, {HUGE_VAL, "given"});
  ASSERT_FALSE(plan);
  EXPECT_EQ(plan.error().code, Code::NotSupported);
  EXPECT_THAT(plan.error().message, HasSubstr("cannot be expressed in linear light"));
}

TEST(APlan, TellsWhatTheAutomaticChoiceCameTo) {
  const Decisions decisions = Decided(kPQ, kSrgb, {});
  ASSERT_TRUE(decisions.toneMap);
  EXPECT_TRUE(decisions.toneMap->chosenAutomatically);
  EXPECT_EQ(decisions.toneMap->algorithm, Algorithm::HuePreservationDesaturation);
  ASSERT_EQ(decisions.toneMap->parameters.size(), 3U);
  EXPECT_EQ(decisions.toneMap->parameters[2].name, "destination peak");
  EXPECT_EQ(decisions.toneMap->parameters[2].value, 1.0F);
  // The knee is a share of the destination's peak, which is graphics white.
  ASSERT_TRUE(decisions.toneMap->knee);
  ASSERT_TRUE(decisions.toneMap->kneeNits);
  EXPECT_NEAR(*decisions.toneMap->kneeNits, *decisions.toneMap->knee * 203.0, 0.01);
  EXPECT_EQ(decisions.device, "cpu");
  EXPECT_EQ(decisions.destinationPeakNits, 203.0);
}

TEST(APlan, TellsTheDialsThatItWasGiven) {
  const Settings settings{.algorithm = Algorithm::CARToneCurve,
                          .gamut = GamutAlgorithm::Reinhard,
                          .knee = 0.25F,
                          .gain = 1.5F,
                          .colorPreservation = 0.75F,
                          .white = 100};
  const Decisions decisions = Decided(kPQ, kSrgb, settings);
  ASSERT_TRUE(decisions.toneMap);
  EXPECT_FALSE(decisions.toneMap->chosenAutomatically);
  EXPECT_EQ(decisions.toneMap->knee, 0.25F);
  EXPECT_EQ(decisions.gain, 1.5F);
  EXPECT_EQ(decisions.colorPreservation, 0.75F);
  EXPECT_TRUE(decisions.gamutApplies);
  EXPECT_EQ(decisions.destinationPeakNits, 100.0);
}

TEST(APlan, HasNoToneMapWhereTheDestinationIsBrightEnough) {
  Source source = kPQ;
  source.light.maxCLL = 500.0F;
  const Target target{*ColorSpaceOfName("bt2100-pq"), 600};
  EXPECT_FALSE(Decided(source, target, {}).toneMap);
  source.light.maxCLL = 700.0F;
  EXPECT_TRUE(Decided(source, target, {}).toneMap);
}

TEST(APlan, WithAnotherPeakIsThePlanMadeWithIt) {
  const auto plan = Plan::Make(kPQ, kSrgb, {}, {1000.0, "measured"});
  ASSERT_TRUE(plan);
  const auto changed = plan->WithPeak(300.0);
  const auto made = Plan::Make(kPQ, kSrgb, {}, {300.0, "measured"});
  ASSERT_TRUE(changed && made);
  const Decisions one = changed->Decide();
  const Decisions other = made->Decide();
  EXPECT_EQ(one.sourcePeak.nits, 300.0);
  EXPECT_EQ(one.sourcePeak.origin, "measured");
  EXPECT_EQ(one.sourcePeakSignal, other.sourcePeakSignal);
  ASSERT_TRUE(one.toneMap && other.toneMap);
  EXPECT_EQ(one.toneMap->knee, other.toneMap->knee);
  // The first plan is as it was.
  EXPECT_EQ(plan->Decide().sourcePeak.nits, 1000.0);
}

TEST(Knees, BelongToTwoAlgorithms) {
  EXPECT_TRUE(Quillon::Mapper::HasKnee(Algorithm::HuePreservationDesaturation));
  EXPECT_TRUE(Quillon::Mapper::HasKnee(Algorithm::CARToneCurve));
  EXPECT_FALSE(Quillon::Mapper::HasKnee(Algorithm::ITU2446A));
  EXPECT_FALSE(Quillon::Mapper::HasKnee(Algorithm::Automatic));
}

TEST(APlan, WorksInThePrimariesOfAnSdrResultWhereTheCurveScalesPixelsAsAWhole) {
  const auto space = [](const Target& target, const Settings& settings) {
    const auto from = Decided(kPQ, target, settings).mappedFrom;
    return std::to_string(from.primaries) + "/" + std::to_string(from.transfer);
  };
  for (const Algorithm algorithm :
       {Algorithm::Automatic, Algorithm::HuePreservationDesaturation, Algorithm::CARToneCurve}) {
    EXPECT_EQ(space(kSrgb, {.algorithm = algorithm}), "1/8");
    EXPECT_EQ(space({*ColorSpaceOfName("p3-d65"), {}}, {.algorithm = algorithm}), "12/8");
    EXPECT_EQ(space({*ColorSpaceOfName("bt2100-pq"), {}}, {.algorithm = algorithm}), "9/16");
    // The engine's gamut compression goes by the primaries of the source.
    EXPECT_EQ(space(kSrgb, {.algorithm = algorithm, .gamut = GamutAlgorithm::Desaturation}),
              "9/16");
  }
  for (const Algorithm algorithm :
       {Algorithm::ITU2446A, Algorithm::ITU2390MaxRGB, Algorithm::ITU2390RGBByChannel}) {
    EXPECT_EQ(space(kSrgb, {.algorithm = algorithm}), "9/16");
  }
}

TEST(APlan, FitsColoursWhereThereMayBeSomeThatTheTargetHasNot) {
  const auto fits = [](const char* source, const char* target, const Settings& settings = {}) {
    return Decided({*ColorSpaceOfName(source), {}}, {*ColorSpaceOfName(target), {}}, settings)
        .fitApplies;
  };
  EXPECT_TRUE(fits("bt2100-pq", "srgb"));
  EXPECT_TRUE(fits("bt2100-hlg", "p3-d65"));
  EXPECT_TRUE(fits("p3-d65", "srgb"));
  EXPECT_FALSE(fits("srgb", "p3-d65"));
  EXPECT_FALSE(fits("bt2100-pq", "bt2100-hlg"));
  EXPECT_FALSE(fits("bt2100-pq", "srgb", {.fit = Quillon::Mapper::GamutFitting::Clip}));
  // HDR in BT.709, whose colours come out as they do from other containers.
  EXPECT_TRUE(Decided({*ColorSpaceOfCicp("1/16/0"), {}}, kSrgb, {}).fitApplies);
}

TEST(APlan, KeepsMostOfTheColourOfHighlightsUnlessAsked) {
  EXPECT_EQ(Decided(kPQ, kSrgb, {}).colorPreservation, 0.95F);
  EXPECT_EQ(Decided(kPQ, kSrgb, {.colorPreservation = 0.5F}).colorPreservation, 0.5F);
}

}  // namespace
