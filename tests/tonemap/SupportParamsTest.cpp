#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/SupportParams.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
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

TEST_F(SupportParams, OfBT2446AReserveOneMoreThanTheyHave) {
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

}  // namespace
