#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/PeakLuminance.h"

namespace {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GraphicsWhiteLuminance;
using scripted::Colors;
using scripted::Message;
using testing::ElementsAre;
using testing::IsEmpty;

class PeakLuminance : public tonemap::ToneMapTest {
 protected:
  float Adjusted() { return Quillon::AdjustedPeakBasedOnInputColorSpace(settings); }

  static float ToLinear(float signal) {
    return Quillon::ConvertPeakSignalToLinear(
        ColorSpace(scripted::kHLG), ColorSpace(scripted::kSDR),
        ColorManagementSettings(GraphicsWhiteLuminance::Nits300), signal);
  }

  static float FromMetaData(const scripted::ColorDescription& colors,
                            float defaultSignal = 0.125F) {
    return Quillon::GetPeakSignalFromMetaData(ColorSpace(colors), defaultSignal);
  }
};

TEST_F(PeakLuminance, OfBt2446AIsTheHostsInNitsWhateverTheColorSpaces) {
  SetAlgorithm(4);
  SetSource({});
  host.results.peakNits = 1234.0F;
  EXPECT_EQ(Adjusted(), 1234.0F);
  EXPECT_THAT(host.Calls(),
              ElementsAre("PX::ToneMappingUtils::ConvertPeakLinearSignalToLuminance(copy)"));
}

TEST_F(PeakLuminance, OfAnEmptySourceIs1AndTraced) {
  SetSource({});
  for (const int algorithm : {0, 1, 2, 3, 5, 6, 7}) {
    SetAlgorithm(algorithm);
    host.Reset();
    EXPECT_EQ(Adjusted(), 1.0F);
    EXPECT_THAT(
        host.Messages(),
        ElementsAre(Message{7, "Quillon",
                            "AdjustedPeakBasedOnInputColorSpace : Src Color Space is empty\r\n"}));
    EXPECT_THAT(host.CallsTo({"CHR::", "PX::"}), IsEmpty());
  }
}

TEST_F(PeakLuminance, BelowVersion3IsTheSourcesLinearValueInDefaultColorManagement) {
  settings.controls.version = 2;
  host.results.convertSignalToLinear = [](const ColorSpace&, float signal) { return signal * 8; };
  EXPECT_EQ(Adjusted(), 6.0F);
  EXPECT_THAT(host.Calls(), ElementsAre("ColorSpace::empty(9/18)", "ToneMapControls::GetVersion(2)",
                                        "CHR::ConvertSignalToLinearValue(9/18, white 203, 0.75)"));
}

TEST_F(PeakLuminance, FromVersion3OnIsLinearLightOfTheDestination) {
  host.results.convertFrame = [](const scripted::Conversion& conversion) {
    conversion.destination[0] *= 2.0F;
  };
  EXPECT_EQ(Adjusted(), 3.0F);
  EXPECT_THAT(host.Calls(),
              ElementsAre("ColorSpace::empty(9/18)", "ToneMapControls::GetVersion(3)",
                          "CHR::ConvertFrame([0.75 0.75 0.75 0], in place, 1, 1, 9/18, BGra, 1, "
                          "1/1, BGra, 1, white 100)",
                          "CHR::ORVColorSpaceToEquivalentLinearColorSpace(1/1)",
                          "CHR::ConvertFrame([1.5 0.75 0.75 0], in place, 1, 1, 1/1, BGra, 1, "
                          "1/8, BGra, 1, white 100)"));
}

TEST_F(PeakLuminance, SignalComesBackUnchangedWhenAConversionFails) {
  for (const int failing : {1, 2}) {
    host.Reset();
    host.results.convertFrame = [](const scripted::Conversion& conversion) {
      conversion.destination[0] = 99.0F;
    };
    host.FailWithCode("CHR::ConvertFrame", -1, failing);
    EXPECT_EQ(ToLinear(0.5F), 0.5F);
    EXPECT_THAT(host.Messages(), IsEmpty());
    EXPECT_EQ(host.CallsTo({"CHR::ConvertFrame"}).size(), static_cast<std::size_t>(failing));
  }
}

TEST_F(PeakLuminance, ConvertsWithTheGivenColorManagement) {
  EXPECT_EQ(ToLinear(0.5F), 0.5F);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}), testing::Each(testing::HasSubstr("white 300")));
}

TEST_F(PeakLuminance, OfAColorSpaceWithoutMetadataIsTheDefault) {
  EXPECT_EQ(FromMetaData(scripted::kSDR, 1.09F), 1.09F);
  EXPECT_THAT(host.Calls(),
              ElementsAre("PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData("
                          "1/1, -1)"));
}

TEST_F(PeakLuminance, OfPQMetadataIsItsCodeValueWithoutAConversion) {
  EXPECT_NEAR(FromMetaData(Colors(9, 16, 1000)), tonemap::kPQ1000, 1e-6F);
  EXPECT_THAT(host.Calls(),
              ElementsAre("PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData("
                          "9/16@1000, -1)",
                          "CHR::GetLinearToSignalTransferFn(16, 0)",
                          "LinearToSignal([1000 1000 1000], 1)", "PX::ColorSpaces::OR2100PQ()",
                          "CHR::AreColorSpacesEquivalent(9/16@1000, BGra, 9/16, BGra, 2)"));
}

TEST_F(PeakLuminance, OfOtherMetadataIsConvertedFromPQInDefaultColorManagement) {
  host.results.convertFrame = [](const scripted::Conversion& conversion) {
    EXPECT_NEAR(conversion.source[0], tonemap::kPQ1000, 1e-6F);
    EXPECT_EQ(conversion.source[1], conversion.source[0]);
    EXPECT_EQ(conversion.source[2], conversion.source[0]);
    conversion.destination[0] = 0.875F;
  };
  EXPECT_EQ(FromMetaData(Colors(1, 1, 1000)), 0.875F);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}),
              ElementsAre(testing::EndsWith(
                  "in place, 1, 1, 9/16, BGra, 16, 1/1@1000, BGra, 16, white 203)")));
}

TEST_F(PeakLuminance, OfMetadataThatCannotBeConvertedIsTheDefault) {
  host.FailWithCode("CHR::ConvertFrame", -1);
  EXPECT_EQ(FromMetaData(Colors(1, 1, 1000)), 0.125F);
  EXPECT_THAT(host.Messages(), IsEmpty());
}

}  // namespace
