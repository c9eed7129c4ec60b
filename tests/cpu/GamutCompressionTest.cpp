#include "cpu/GamutCompression.h"
#include "tests/host/HostTest.h"

namespace {

using orvmediatypes::color::GamutCompressionAlgorithmType;
using Quillon::SupportVector;
using scripted::Message;
using testing::ElementsAre;
using testing::IsEmpty;

using Pixel = std::array<float, 4>;

Pixel Reinhard(Pixel pixel, float limit) {
  Quillon::GamutCompressionReinhard{}(pixel.data(), SupportVector{limit}, {});
  return pixel;
}

Pixel Desaturation(Pixel pixel, const SupportVector& weights) {
  Quillon::GamutCompressionDesaturation{}(pixel.data(), weights, {});
  return pixel;
}

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

TEST_F(GamutCompression, ReinhardLeavesPixelsWithoutLightAlone) {
  for (const Pixel& pixel : {Pixel{0.0F, 0.0F, 0.0F, 1.0F}, Pixel{-1.0F, -2.0F, 1e-15F, 1.0F},
                             Pixel{-1.0F, -1.0F, -1.0F, 1.0F}}) {
    EXPECT_EQ(Reinhard(pixel, 2.0F), pixel);
  }
}

TEST_F(GamutCompression, ReinhardLeavesChannelsUpToTheirThresholdAlone) {
  EXPECT_EQ(Reinhard({0.0625F, 1.0F, 0.0625F, 1.0F}, 2.0F), (Pixel{0.0625F, 1.0F, 0.0625F, 1.0F}));
  const Pixel green = Reinhard({1.0F, 0.0625F, 1.0F, 1.0F}, 2.0F);
  EXPECT_GT(green[1], 0.0625F) << "channel 1 has the lower threshold";
}

TEST_F(GamutCompression, ReinhardTakesADistanceAtTheLimitToZero) {
  const Pixel pixel = Reinhard({-1.0F, 1.0F, -3.0F, 0.5F}, 2.0F);
  EXPECT_NEAR(pixel[0], 0.0F, 1e-6F);
  EXPECT_EQ(pixel[1], 1.0F);
  EXPECT_NEAR(pixel[2], 0.0F, 1e-6F) << "clamped to the limit first";
  EXPECT_EQ(pixel[3], 0.5F);
}

TEST_F(GamutCompression, ReinhardOnlyClampsWithALimitUpTo1) {
  EXPECT_EQ(Reinhard({-1.0F, 1.0F, 0.25F, 1.0F}, 1.0F), (Pixel{0.0F, 1.0F, 0.25F, 1.0F}));
  EXPECT_EQ(Reinhard({-1.0F, 1.0F, 0.25F, 1.0F}, 0.5F), (Pixel{0.5F, 1.0F, 0.5F, 1.0F}));
}

TEST_F(GamutCompression, DesaturationLeavesPixelsInsideAlone) {
  const SupportVector weights = {0.2126F, 0.7152F, 0.0722F};
  EXPECT_EQ(Desaturation({0.05F, 1.0F, 0.5F, 1.0F}, weights), (Pixel{0.05F, 1.0F, 0.5F, 1.0F}));
  EXPECT_NE(Desaturation({0.03F, 1.0F, 0.5F, 1.0F}, weights), (Pixel{0.03F, 1.0F, 0.5F, 1.0F}));
}

TEST_F(GamutCompression, DesaturationTakesAChannelAtTheFloorToZero) {
  for (const float channel : {-5.0F, -6.0F}) {
    const Pixel pixel = Desaturation({channel, 1.0F, 0.5F, 0.75F}, {0.2126F, 0.7152F, 0.0722F});
    EXPECT_NEAR(pixel[0], 0.0F, 1e-6F);
    EXPECT_LT(pixel[1], 1.0F);
    EXPECT_GT(pixel[2], 0.5F);
    EXPECT_EQ(pixel[3], 0.75F);
  }
}

TEST_F(GamutCompression, DesaturationDoesNotWeighChannel0) {
  // Blue alone: the luminance is 0, so the anchor is the threshold and its margin whatever the
  // weights.
  const Pixel blue = {1.0F, 0.0F, 0.0F, 1.0F};
  EXPECT_EQ(Desaturation(blue, {0.2126F, 0.7152F, 0.0722F}),
            Desaturation(blue, {0.2126F, 0.7152F, 100.0F}));
}

TEST_F(GamutCompression, DesaturationWeighsChannel2WithRedAndBlue) {
  const Pixel red = {0.0F, 0.0F, 1.0F, 1.0F};
  const Pixel both = Desaturation(red, {0.25F, 0.5F, 0.25F});
  EXPECT_EQ(both, Desaturation(red, {0.5F, 0.5F, 0.0F}));
  EXPECT_NE(both, Desaturation(red, {0.25F, 0.5F, 0.0F}));
}

}  // namespace
