#include <cmath>

#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/Itu2446A.h"

namespace {

using orvmediatypes::color::ColorSpace;
using testing::ElementsAre;

class Itu2446AParams : public tonemap::ToneMapTest {
 protected:
  void SetUp() override {
    ToneMapTest::SetUp();
    SetAlgorithm(4);
    settings.controls.peak = 1000.0F;
  }

  void Build() { Quillon::GetITU2446ASupportParams(settings, params); }

  static float Rho(float nits) { return 1.0F + 32.0F * std::pow(nits * 0.0001F, 0.4166F); }

  void ExpectParams(float hdrPeak, float sdrPeak, float white) {
    ASSERT_EQ(params.size(), 4U);
    EXPECT_FLOAT_EQ(params[0], Rho(hdrPeak));
    EXPECT_FLOAT_EQ(params[1], Rho(sdrPeak));
    EXPECT_FLOAT_EQ(params[2], std::pow(hdrPeak / sdrPeak, 0.4166F) * (white / hdrPeak));
    EXPECT_FLOAT_EQ(params[3], sdrPeak / white);
  }
};

TEST_F(Itu2446AParams, TakeTheDestinationsPeakWhereItIsKnown) {
  host.results.peakLuminance = 250;
  Build();
  ExpectParams(1000.0F, 250.0F, 100.0F);
  EXPECT_THAT(
      host.CallsTo({"CHR::", "PX::ColorSpaceUtils", "ColorManagement"}),
      ElementsAre("PX::ColorSpaceUtils::IsSDRColorSpace(1/1)",
                  "ColorManagementSettings::GetGraphicsWhiteLuminance(white 100)",
                  "CHR::AreColorSpacesEquivalent(1/1, BGra, 9/16, BGra, 2)",
                  "CHR::ConvertFrame([1 1 1 1], in place, 1, 1, 1/1, BGra, 16, 9/16, BGra, 16, "
                  "white 100)",
                  "PX::ColorSpaceUtils::GetPeakLuminance(1/1)"));
}

TEST_F(Itu2446AParams, TakeFullScaleTimesReferenceWhiteWhereItIsNot) {
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[0] = 0.5F; };
  host.results.convertSignalToLinear = [](const ColorSpace&, float signal) { return signal * 6; };
  Build();
  ExpectParams(1000.0F, 300.0F, 100.0F);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignal"}),
              ElementsAre("CHR::ConvertSignalToLinearValue(9/16, white 100, 0.5)"));
}

TEST_F(Itu2446AParams, IgnoreAFailedConversion) {
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[0] = 0.5F; };
  host.FailWithCode("CHR::ConvertFrame", -1);
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::ConvertSignal"}),
              ElementsAre("CHR::ConvertSignalToLinearValue(9/16, white 100, 1)"));
  ExpectParams(1000.0F, 100.0F, 100.0F);
}

TEST_F(Itu2446AParams, ConvertNothingForAPQDestination) {
  SetDestination(scripted::kPQ);
  Build();
  EXPECT_TRUE(host.CallsTo({"CHR::ConvertFrame"}).empty());
  ExpectParams(1000.0F, 100.0F, 100.0F);
}

TEST_F(Itu2446AParams, TakeAReferenceWhiteOf1ForADestinationNeitherSDRNorHDR) {
  SetDestination(scripted::kLinear709);
  host.results.peakLuminance = 250;
  Build();
  ExpectParams(1000.0F, 250.0F, 1.0F);
}

TEST_F(Itu2446AParams, UseTheRecordsOwnColorManagementInEveryVersion) {
  settings.controls.version = 2;
  Build();
  EXPECT_THAT(host.CallsTo({"CHR::Convert", "ColorManagement"}),
              testing::Each(testing::HasSubstr("white 100")));
}

}  // namespace
