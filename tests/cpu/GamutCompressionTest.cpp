#include "cpu/GamutCompression.h"
#include "tests/host/HostTest.h"

namespace {

using orvmediatypes::color::GamutCompressionAlgorithmType;
using Quillon::SupportVector;
using scripted::Message;
using testing::ElementsAre;
using testing::IsEmpty;

class GamutCompression : public scripted::HostTest {
 protected:
  /// Builds the parameters of an algorithm into a vector that is not empty.
  int Build(int algorithm) {
    record.GamutCompressionSettings::algorithmType =
        static_cast<GamutCompressionAlgorithmType>(algorithm);
    const scripted::RecordWatch watch(record);
    params = {9.0F, 9.0F};
    return Quillon::GetGamutCompressionSupportParams(record, params);
  }

  void TearDown() override {
    params = SupportVector();
    HostTest::TearDown();
  }

  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5);
  SupportVector params;
};

TEST_F(GamutCompression, BuildsTheLimitOfReinhardFromAFullScaleSignal) {
  host.results.convertFrame = [](const scripted::Conversion& conversion) {
    conversion.destination[0] += 2.0F;
  };
  EXPECT_EQ(Build(1), 0);
  EXPECT_THAT(params, ElementsAre(5.0F));
  EXPECT_THAT(
      host.Calls(),
      ElementsAre(
          "CHR::ConvertFrame([1 1 1 0], in place, 1, 1, 9/18, BGra, 1, 1/1, BGra, 1, white 100)",
          "CHR::ORVColorSpaceToEquivalentLinearColorSpace(1/1)",
          "CHR::ConvertFrame([3 1 1 0], in place, 1, 1, 1/1, BGra, 1, 1/8, BGra, 1, white 100)"));
}

TEST_F(GamutCompression, BuildsALimitOf1WhenAConversionFails) {
  for (const int failing : {1, 2}) {
    host.Reset();
    host.results.convertFrame = [](const scripted::Conversion& conversion) {
      conversion.destination[0] += 2.0F;
    };
    host.FailWithCode("CHR::ConvertFrame", -1, failing);
    EXPECT_EQ(Build(1), 0);
    EXPECT_THAT(params, ElementsAre(1.0F));
    EXPECT_THAT(host.Messages(), IsEmpty());
  }
}

TEST_F(GamutCompression, BuildsTheWeightsOfDesaturation) {
  EXPECT_EQ(Build(2), 0);
  EXPECT_THAT(params, ElementsAre(0.25F, 0.5F, 0.125F));
  EXPECT_THAT(host.Calls(),
              ElementsAre("CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(GamutCompression, UsesTheRecordsOwnColorManagementInEveryVersion) {
  record.toneMapSettings.controls.version = 2;
  EXPECT_EQ(Build(2), 0);
  EXPECT_THAT(host.Calls(),
              ElementsAre("CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
  host.Reset();
  EXPECT_EQ(Build(1), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}), testing::Each(testing::HasSubstr("white 100")));
}

TEST_F(GamutCompression, LeavesTheVectorEmptyForAnUnknownAlgorithmWithoutAMessage) {
  for (const int algorithm : {0, 3, 7, -1}) {
    EXPECT_EQ(Build(algorithm), static_cast<int>(0xA00F000CU));
    EXPECT_THAT(params, IsEmpty());
  }
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(GamutCompression, SizesAre1And3) {
  EXPECT_EQ(Quillon::GetGamutCompressionSupportParamsSize(GamutCompressionAlgorithmType::Reinhard),
            1);
  EXPECT_EQ(
      Quillon::GetGamutCompressionSupportParamsSize(GamutCompressionAlgorithmType::Desaturation),
      3);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(GamutCompression, SizeOfAnUnknownAlgorithmIsTracedUnderTheToneMapsName) {
  for (const int algorithm : {3, 0, -1}) {
    host.Reset();
    EXPECT_EQ(Quillon::GetGamutCompressionSupportParamsSize(
                  static_cast<GamutCompressionAlgorithmType>(algorithm)),
              -1);
    EXPECT_THAT(host.Messages(),
                ElementsAre(Message{7, "Quillon",
                                    "GetToneMappingSupportParamsSize : Invalid Tone Map Method "
                                    "Algorithm Type : gamut compression " +
                                        std::to_string(algorithm) + "\r\n"}));
    EXPECT_THAT(host.CallsTo({"PX::"}),
                ElementsAre("PX::GamutMappingUtils::GetGamutCompressionMethodName(" +
                            std::to_string(algorithm) + ", 1)"));
  }
}

}  // namespace
