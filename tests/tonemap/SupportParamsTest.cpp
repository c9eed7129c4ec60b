#include <cmath>
#include <limits>

#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/SupportParams.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using scripted::Colors;
using scripted::Message;
using testing::ElementsAre;
using testing::IsEmpty;

class SupportParams : public tonemap::ToneMapTest {
 protected:
  void Build() { Quillon::GetToneMappingSupportParams(settings, params); }
};

TEST_F(SupportParams, AskForThePQFunctionsWhenTheEngineIsLoadedAndForNothingElse) {
  EXPECT_THAT(host.StartupCalls(),
              testing::UnorderedElementsAre("CHR::GetSignalToLinearTransferFn(16, 0)",
                                            "CHR::GetLinearToSignalTransferFn(16, 0)"));
}

TEST_F(SupportParams, RewriteTheVersionAndThenThePeak) {
  settings.controls.version = 5;
  host.results.adjustVersion = [](int version) { return version - 3; };
  host.results.convertSignalToLinear = [](const ColorSpace&, float) { return 12.0F; };
  Build();
  EXPECT_EQ(settings.controls.version, 2);
  EXPECT_EQ(settings.controls.peak, 12.0F) << "by the adjusted version";
  EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils"}),
              ElementsAre("PX::ToneMappingUtils::AdjustToneMapSettingsVersionForNCMVersionHandle("
                          "5)"));
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignalToLinearValue(9/18"}),
              ElementsAre("CHR::ConvertSignalToLinearValue(9/18, white 203, 0.75)"));
}

TEST_F(SupportParams, LeaveEverythingElseInTheRecordAlone) {
  for (const int algorithm : {2, 3, 4, 5, 6, 0, 7}) {
    SetAlgorithm(algorithm);
    Build();
    EXPECT_EQ(settings.algorithmType, static_cast<ToneMapAlgorithmType>(algorithm));
    EXPECT_EQ(settings.knee, 0.5F);
    EXPECT_EQ(settings.controls.peakGain, 2.0F);
    EXPECT_EQ(settings.controls.colorPreservation, 0.25F);
    EXPECT_TRUE(settings.reserved);
  }
}

TEST_F(SupportParams, HaveTheLengthOfTheirAlgorithm) {
  struct Case {
    int algorithm;
    std::size_t length;
  };
  for (const Case& c : {Case{1, 3}, {2, 13}, {3, 13}, {4, 4}, {5, 3}, {6, 7}}) {
    SetAlgorithm(c.algorithm);
    Build();
    EXPECT_EQ(params.size(), c.length) << c.algorithm;
  }
  EXPECT_THAT(host.Messages(), IsEmpty());
}

TEST_F(SupportParams, OfBt2446AReserveOneMoreThanTheyHave) {
  SetAlgorithm(4);
  params = Quillon::SupportVector();
  Build();
  EXPECT_EQ(params.size(), 4U);
  EXPECT_EQ(params.capacity(), 5U);
}

TEST_F(SupportParams, OfAnUnknownAlgorithmAreTracedAndLeftAlone) {
  for (const int algorithm : {0, 7, -3}) {
    SetAlgorithm(algorithm);
    host.Reset();
    settings.controls.version = 2;
    host.results.convertSignalToLinear = [](const ColorSpace&, float) { return 12.0F; };
    Build();
    EXPECT_THAT(params, ElementsAre(9.0F, 9.0F));
    EXPECT_EQ(settings.controls.peak, 12.0F) << "the peak has been rewritten by then";
    EXPECT_THAT(host.Messages(),
                ElementsAre(Message{
                    7, "Quillon",
                    "GetToneMappingSupportParams : Not implemented for input algorithms : " +
                        std::to_string(algorithm) + "\r\n"}));
  }
}

TEST_F(SupportParams, SizesAre13And13And5And3And7) {
  const auto size = [](int algorithm) {
    return Quillon::GetToneMappingSupportParamsSize(static_cast<ToneMapAlgorithmType>(algorithm));
  };
  EXPECT_EQ(size(2), 13);
  EXPECT_EQ(size(3), 13);
  EXPECT_EQ(size(4), 5);
  EXPECT_EQ(size(5), 3);
  EXPECT_EQ(size(6), 7);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(SupportParams, SizeOfAnyOtherAlgorithmIsMinus1AndTracedByName) {
  for (const int algorithm : {1, 0, 7, -1}) {
    host.Reset();
    EXPECT_EQ(
        Quillon::GetToneMappingSupportParamsSize(static_cast<ToneMapAlgorithmType>(algorithm)), -1);
    EXPECT_THAT(host.Messages(),
                ElementsAre(Message{7, "Quillon",
                                    "GetToneMappingSupportParamsSize : Invalid Tone Map Method "
                                    "Algorithm Type : tone map " +
                                        std::to_string(algorithm) + "\r\n"}));
    EXPECT_THAT(host.CallsTo({"PX::"}),
                ElementsAre("PX::ToneMappingUtils::GetLocalizedToneMappingMethodName(" +
                            std::to_string(algorithm) + ", 1)"));
  }
}

TEST_F(SupportParams, WeightsAreThoseOfTheConverter) {
  host.results.luminanceCoefficients = {0.5F, 0.25F, 0.75F};
  EXPECT_THAT(Quillon::GetDestinationLuminanceWeights(settings.destinationColorSpace,
                                                      settings.colorManagementSettings),
              ElementsAre(0.5F, 0.25F, 0.75F));
  EXPECT_THAT(host.Calls(),
              ElementsAre("CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(SupportParams, WeightsAreZeroWithoutAConverter) {
  host.FailWithCode("CHR::GetColorConverterParamsForColorSpace", -1);
  EXPECT_THAT(Quillon::GetDestinationLuminanceWeights(settings.destinationColorSpace,
                                                      settings.colorManagementSettings),
              ElementsAre(0.0F, 0.0F, 0.0F));
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();

class SupportParamsAtLimits : public tonemap::ToneMapTest {
 protected:
  void Build(int algorithm) {
    SetAlgorithm(algorithm);
    Quillon::GetToneMappingSupportParams(settings, params);
  }

  /// Lets the conversions to PQ deliver these code values for black and peak of source and
  /// destination.
  void Deliver(std::array<float, 2> source, std::array<float, 2> destination) {
    host.results.convertFrame = [=, calls = 0](const scripted::Conversion& conversion) mutable {
      if (conversion.width != 2) return;
      const auto& [black, peak] = ++calls == 1 ? source : destination;
      conversion.destination[0] = black;
      conversion.destination[4] = peak;
    };
  }
};

TEST_F(SupportParamsAtLimits, OfTheAutomaticChoiceAreThreeAndTheChoiceStandsInTheRecord) {
  settings.controls.version = 2;
  host.results.automaticChoice = [](float, ToneMapAlgorithmType& algorithm, float& knee) {
    algorithm = ToneMapAlgorithmType::HuePreservationDesaturation;
    knee = 0.25F;
  };
  host.results.convertSignalToLinear = [](const ColorSpace&, float) { return 4.0F; };
  Build(1);
  EXPECT_THAT(params, ElementsAre(8.0F, 1.0F, 4.0F));
  EXPECT_EQ(settings.algorithmType, ToneMapAlgorithmType::HuePreservationDesaturation);
  EXPECT_EQ(settings.knee, 0.25F);
  EXPECT_THAT(host.Messages(), IsEmpty()) << "the size asked for is that of the hue-preserving one";
}

TEST_F(SupportParamsAtLimits, OfTheAutomaticChoiceHaveNoSize) {
  EXPECT_EQ(Quillon::GetToneMappingSupportParamsSize(ToneMapAlgorithmType::Automatic), -1);
  EXPECT_THAT(host.Messages(),
              ElementsAre(scripted::Message{7, "Quillon",
                                            "GetToneMappingSupportParamsSize : Invalid Tone Map "
                                            "Method Algorithm Type : tone map 1\r\n"}));
}

TEST_F(SupportParamsAtLimits, OfBt2446AAreFourThoughTheSizeQuerySays5) {
  Build(4);
  EXPECT_EQ(params.size(), 4U);
  EXPECT_EQ(Quillon::GetToneMappingSupportParamsSize(ToneMapAlgorithmType::ITU2446A), 5);
}

TEST_F(SupportParamsAtLimits, OfBt2446AFollowTheExponent04166) {
  // 10000 nits over 100: 1 + 32, 1 + 32 x 0.01^0.4166 (not 5.69696, as with 1/2.4), 100^0.4166 /
  // 100, and 1.
  host.results.peakNits = 10000.0F;
  host.results.peakLuminance = 100;
  Build(4);
  ASSERT_EQ(params.size(), 4U);
  EXPECT_FLOAT_EQ(params[0], 33.0F);
  EXPECT_FLOAT_EQ(params[1], 5.69840009F);
  EXPECT_FLOAT_EQ(params[2], 0.0681082903F);
  EXPECT_EQ(params[3], 1.0F);
}

TEST_F(SupportParamsAtLimits, OfBt2446ATakeOnlyMinus1ForAnUnknownPeak) {
  host.results.peakLuminance = 0;
  Build(4);
  EXPECT_THAT(params, ElementsAre(testing::FloatEq(13.26168F), 1.0F, kInfinity, 0.0F));
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignal"}), IsEmpty());
}

TEST_F(SupportParamsAtLimits, OfBt2390FromPQToPQComeFromTheUnconvertedBuffer) {
  SetSource(scripted::kPQ);
  SetDestination(Colors(9, 16, 1000));
  Build(2);
  ASSERT_EQ(params.size(), 13U);
  EXPECT_EQ(params[0], 0.0F);
  EXPECT_EQ(params[1], 1.0F);
  EXPECT_EQ(params[2], 0.0F);
  EXPECT_FLOAT_EQ(params[3], 0.751827121F);
  EXPECT_EQ(params[5], 1.0F);
  EXPECT_EQ(params[6], 0.0F);
  EXPECT_EQ(params[7], params[3]);
  EXPECT_FLOAT_EQ(params[8], 0.627740622F);
  EXPECT_NEAR(params[9], 3.17046722F, 1e-5F) << "PQ 0.6277406 is 317.047 nits";
}

TEST_F(SupportParamsAtLimits, OfBt2390BelowVersion3CountAnHLGSourceAs1000Nits) {
  settings.controls.version = 2;
  SetSource(scripted::kHLG);
  Deliver({0.0F, 0.376F}, {});
  Build(3);
  ASSERT_EQ(params.size(), 13U);
  EXPECT_EQ(params[1], 0.752F);
  EXPECT_EQ(params[5], 0.752F);
  EXPECT_FLOAT_EQ(params[7], 0.5F);
  EXPECT_FLOAT_EQ(params[8], 0.25F);
}

TEST_F(SupportParamsAtLimits, OfBt2390BelowVersion3TakeASignalOf109WithoutMetadata) {
  settings.controls.version = 2;
  SetSource(scripted::kPQ);
  SetDestination(scripted::kPQ);
  Build(2);
  ASSERT_EQ(params.size(), 13U);
  EXPECT_EQ(params[3], 1.09F);
}

TEST_F(SupportParamsAtLimits, OfBt2390FromVersion3OnTakeASignalOf1WithoutMetadata) {
  SetSource(scripted::kPQ);
  SetDestination(scripted::kPQ);
  Build(2);
  ASSERT_EQ(params.size(), 13U);
  EXPECT_EQ(params[3], 1.0F);
}

TEST_F(SupportParamsAtLimits, OfBt2390StartTheKneeAt1BetweenEqualPeaks) {
  Deliver({0.0F, 0.5F}, {0.0F, 0.5F});
  Build(2);
  EXPECT_EQ(params.at(7), 1.0F);
  EXPECT_EQ(params.at(8), 1.0F);
}

TEST_F(SupportParamsAtLimits, OfBt2390DivideByARangeOf0) {
  Deliver({0.5F, 0.5F}, {0.25F, 0.75F});
  Build(2);
  ASSERT_EQ(params.size(), 13U);
  EXPECT_EQ(params[5], 0.0F);
  EXPECT_EQ(params[6], -kInfinity);
  EXPECT_EQ(params[7], kInfinity);
  EXPECT_EQ(params[8], kInfinity);
}

TEST_F(SupportParamsAtLimits, OfTheCarCurveReadTheFirstEntryForAKneeOf0) {
  settings.knee = 0.0F;
  Build(6);
  ASSERT_EQ(params.size(), 7U);
  EXPECT_EQ(params[0], 0.005F);
  EXPECT_NEAR(params[1], 0.264586332F, 1e-6F);
  EXPECT_NEAR(params[2], 0.999163305F, 1e-6F);
}

TEST_F(SupportParamsAtLimits, OfTheCarCurveReadEntry127ForAKneeOf1) {
  // x has grown to 0.9922277 by then and not to 1.
  settings.knee = 1.0F;
  Build(6);
  ASSERT_EQ(params.size(), 7U);
  EXPECT_EQ(params[0], 1.0F);
  EXPECT_NEAR(params[1], 0.00778148901F, 1e-6F);
  EXPECT_NEAR(params[2], 0.999975393F, 1e-6F);
}

TEST_F(SupportParamsAtLimits, OfTheCarCurveGoByTheMetadataPeak) {
  SetDestination(Colors(9, 16, 1000));
  host.results.convertSignalToLinear = [](const ColorSpace&, float signal) { return signal * 2; };
  Build(6);
  ASSERT_EQ(params.size(), 7U);
  EXPECT_FLOAT_EQ(params[3], 2.0F * 0.751827121F);
  EXPECT_FLOAT_EQ(params[0], 2.0F * 0.751827121F * 0.5025F);
}

TEST_F(SupportParamsAtLimits, OfTheCarCurveTakeASignalOf1WithoutMetadata) {
  float asked = 0.0F;
  host.results.convertSignalToLinear = [&](const ColorSpace& colorSpace, float signal) {
    if (colorSpace.Description() == scripted::kSDR) asked = signal;
    return signal;
  };
  Build(6);
  EXPECT_EQ(asked, 1.0F);
}

TEST_F(SupportParamsAtLimits, OfTheHuePreservingCurveTakeASignalOf1WithoutMetadata) {
  float asked = 0.0F;
  host.results.convertSignalToLinear = [&](const ColorSpace& colorSpace, float signal) {
    if (colorSpace.Description() == scripted::kSDR) asked = signal;
    return signal;
  };
  Build(5);
  EXPECT_EQ(asked, 1.0F);
}

TEST_F(SupportParamsAtLimits, OfAlgorithmsThatDoNotExistLeaveTheVectorAlone) {
  for (const int algorithm :
       {0, 7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    Build(algorithm);
    EXPECT_THAT(params, ElementsAre(9.0F, 9.0F)) << algorithm;
  }
}

}  // namespace
