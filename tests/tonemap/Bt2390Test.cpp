#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/Bt2390.h"

namespace {

using scripted::Colors;
using testing::ElementsAre;
using testing::IsEmpty;

class Bt2390Params : public tonemap::ToneMapTest {
 protected:
  void SetUp() override {
    ToneMapTest::SetUp();
    SetAlgorithm(2);
  }

  void Build() { Quillon::GetITU2390SupportParams(settings, params); }

  /// Lets the conversions of source and destination deliver these PQ code values for black and
  /// peak, in the order of the calls.
  void Deliver(std::vector<std::array<float, 2>> pairs) {
    host.results.convertFrame = [this, pairs = std::move(pairs)](const scripted::Conversion& c) {
      ASSERT_EQ(c.width, 2);
      ASSERT_EQ(c.height, 1);
      ASSERT_NE(c.source, c.destination) << "source and destination buffers are two";
      const auto& [black, peak] = pairs.at(conversions_++);
      c.destination[0] = black;
      c.destination[4] = peak;
    };
  }

  std::size_t conversions_ = 0;
};

TEST_F(Bt2390Params, AreBuiltFromBothConversionsInVersion3) {
  Deliver({{0.125F, 0.875F}, {0.25F, 0.625F}});
  Build();
  const float kneeStart = 1.5F * ((0.625F - 0.125F) / 0.75F) - 0.5F;
  ASSERT_EQ(params.size(), 13U);
  EXPECT_THAT(std::vector<float>(params.begin(), params.begin() + 9),
              ElementsAre(0.125F, 0.875F, 0.25F, 0.625F, 100.0F, 0.75F, (0.25F - 0.125F) / 0.75F,
                          (0.625F - 0.125F) / 0.75F, kneeStart));
  EXPECT_NEAR(params[9], 0.922457F, 1e-5F) << "PQ 0.5 is 92.2457 nits";
  EXPECT_THAT(std::vector<float>(params.begin() + 10, params.end()),
              ElementsAre(0.25F, 0.5F, 0.125F));
  EXPECT_THAT(
      host.CallsTo(
          {"CHR::", "PX::ColorSpaceUtils", "ToneMapControls", "ColorManagement", "SignalToLinear"}),
      ElementsAre(
          "ToneMapControls::GetVersion(3)",
          "CHR::AreColorSpacesEquivalent(9/18, BGra, 9/16, BGra, 2)",
          "CHR::ConvertFrame([0 0 0 1 1 1 1 1], [0 0 0 1 1 1 1 1], 2, 1, 9/18, BGra, 32, 9/16, "
          "BGra, 32, white 100)",
          "PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData(1/1, -1)",
          "CHR::AreColorSpacesEquivalent(1/1, BGra, 9/16, BGra, 2)",
          "CHR::ConvertFrame([0 0 0 1 1 1 1 1], [0.125 0 0 1 1 1 1 1], 2, 1, 1/1, BGra, 32, 9/16, "
          "BGra, 32, white 100)",
          "PX::ColorSpaceUtils::IsSDRColorSpace(1/1)",
          "ColorManagementSettings::GetGraphicsWhiteLuminance(white 100)",
          "SignalToLinear([0.5 1 1], 1)",
          "CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(Bt2390Params, ConvertNothingForPQOnBothSides) {
  SetSource(scripted::kPQ);
  SetDestination(scripted::kPQ);
  Build();
  EXPECT_THAT(std::vector<float>(params.begin(), params.begin() + 9),
              ElementsAre(0.0F, 1.0F, 0.0F, 1.0F, 100.0F, 1.0F, 0.0F, 1.0F, 1.0F));
  EXPECT_EQ(params[9], 100.0F);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}), IsEmpty());
}

TEST_F(Bt2390Params, ReadAPQDestinationFromTheBufferThatTheSourceLeft) {
  SetDestination(Colors(9, 16, 1000));
  Deliver({{0.125F, 0.875F}});
  Build();
  EXPECT_EQ(params[2], 0.125F);
  EXPECT_NEAR(params[3], tonemap::kPQ1000, 1e-6F);
}

TEST_F(Bt2390Params, TakeTheDestinationsMetadataPeakOnAllChannelsInVersion3) {
  SetDestination(Colors(1, 1, 300));
  host.results.convertFrame = [](const scripted::Conversion& c) {
    if (c.width == 1) c.destination[0] = 0.375F;  // PQ of the metadata into the destination
  };
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame(["}),
              testing::Contains(testing::StartsWith(
                  "CHR::ConvertFrame([0 0 0 1 0.375 0.375 0.375 1], [0 0 0 1 0.375 0.375 0.375 "
                  "1], 2, 1, 1/1@300, ")));
}

TEST_F(Bt2390Params, AssumeTheSourceAndSetOneChannelBelowVersion3) {
  SetSource(scripted::kSDR);
  settings.controls.version = 2;
  Deliver({{0.25F, 0.625F}});
  Build();
  EXPECT_THAT(
      std::vector<float>(params.begin(), params.begin() + 9),
      ElementsAre(0.0F, 1.0F, 0.25F, 0.625F, 100.0F, 1.0F, 0.25F, 0.625F, 1.5F * 0.625F - 0.5F));
  EXPECT_THAT(
      host.CallsTo({"CHR::", "PX::ColorSpaceUtils::IsRec", "PX::ColorSpaceUtils::Get"}),
      ElementsAre(
          "PX::ColorSpaceUtils::IsRec2100HLGColorSpace(1/1)",
          "PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData(1/1, -1)",
          "CHR::AreColorSpacesEquivalent(1/1, BGra, 9/16, BGra, 2)",
          "CHR::ConvertFrame([0 0 0 1 1.09 0 0 1], [0 0 0 1 1.09 0 0 1], 2, 1, 1/1, BGra, 32, "
          "9/16, BGra, 32, white 100)",
          "CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(Bt2390Params, TakeTheMetadataPeakOnOneChannelBelowVersion3) {
  SetDestination(Colors(1, 1, 300));
  settings.controls.version = 2;
  host.results.convertFrame = [](const scripted::Conversion& c) {
    if (c.width == 1) c.destination[0] = 0.375F;
  };
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame([0 0 0 1"}),
              ElementsAre(testing::StartsWith("CHR::ConvertFrame([0 0 0 1 0.375 0 0 1], [0 0 0 1 "
                                              "0.375 0 0 1], 2, 1, 1/1@300, ")));
}

TEST_F(Bt2390Params, Assume1000NitsForAnHLGSourceBelowVersion3) {
  settings.controls.version = 2;
  Build();
  EXPECT_EQ(params[0], 0.0F);
  EXPECT_EQ(params[1], 0.752F);
}

TEST_F(Bt2390Params, TakeTheReferenceWhiteByVersionAndKindOfDestination) {
  struct Case {
    int version;
    scripted::ColorDescription destination;
    float white;
  };
  for (const Case& c : {Case{3, scripted::kSDR, 100.0F}, Case{3, scripted::kPQ, 100.0F},
                        Case{3, scripted::kHLG, 100.0F}, Case{3, scripted::kLinear709, 1.0F},
                        Case{2, scripted::kSDR, 100.0F}, Case{2, scripted::kPQ, 1000.0F},
                        Case{2, scripted::kHLG, 1000.0F}, Case{2, scripted::kLinear709, 1000.0F}}) {
    host.Reset();
    settings.controls.version = c.version;
    SetDestination(c.destination);
    Build();
    EXPECT_EQ(params.at(4), c.white)
        << "version " << c.version << ", transfer " << static_cast<int>(c.destination.transfer);
  }
}

TEST_F(Bt2390Params, AreEmptyWhenTheSourceCannotBeConverted) {
  host.FailWithCode("CHR::ConvertFrame", -1);
  Build();
  EXPECT_THAT(params, IsEmpty());
  EXPECT_THAT(host.Messages(), IsEmpty());
  EXPECT_THAT(host.CallsTo({"PX::ColorSpaceUtils", "CHR::GetColor"}), IsEmpty());
}

TEST_F(Bt2390Params, StopAfterTwoWhenTheDestinationCannotBeConverted) {
  for (const int version : {2, 3}) {
    host.Reset();
    settings.controls.version = version;
    host.FailWithCode("CHR::ConvertFrame", -1, version == 3 ? 2 : 1);
    Build();
    EXPECT_EQ(params.size(), 2U);
    EXPECT_THAT(host.Messages(), IsEmpty());
    EXPECT_THAT(host.CallsTo({"PX::ColorSpaceUtils::IsSDR", "CHR::GetColor"}), IsEmpty());
  }
}

}  // namespace
