#include <cmath>

#include "cpu/QuillonImpl.h"
#include "tests/cpu/Gain.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using scripted::Message;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kUnknown = static_cast<int>(0xA00F000CU);
constexpr int kDegenerate = static_cast<int>(0xA00F000FU);

/// A pixel far out of gamut: both compressions change it.
const std::vector<float> kPixel = {-1.0F, 0.5F, 1.0F, 0.25F};

class Steps : public scripted::HostTest {
 protected:
  /// Runs the engine over one pixel.
  int Run() {
    pixel = kPixel;
    const scripted::RecordWatch watch(record);
    return Quillon::QuillonImpl().GenerateGamutMappedFrame(pixel.data(), pixel.data(), 1, 1, 4, 4,
                                                           record);
  }

  /// Lets a gamut compression be applied with the given limit.
  void CompressTo(float limit) {
    host.results.gamutCompressionApplicable = true;
    host.results.convertFrame = [limit](const scripted::Conversion& conversion) {
      conversion.destination[0] = limit;
    };
  }

  void SetToneMap(int algorithm) {
    record.toneMapSettings.algorithmType = static_cast<ToneMapAlgorithmType>(algorithm);
    host.results.toneMappingApplicable = true;
  }

  void SetGamut(int algorithm) {
    record.GamutCompressionSettings::algorithmType =
        static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(algorithm);
  }

  void ExpectNoThreadAndNoPixelTouched() {
    EXPECT_THAT(host.CallsTo({"orvcore::threads"}), IsEmpty());
    EXPECT_EQ(pixel, kPixel);
  }

  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5, 1);
  std::vector<float> pixel;
};

TEST_F(Steps, AskAboutTheRecordFirstAndThenAboutTheWorkingCopy) {
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(host.CallsTo({"CHR::"}), ElementsAre("CHR::IsGamutCompressionApplicable(record)",
                                                   "CHR::IsToneMappingApplicable(copy)"));
  EXPECT_EQ(pixel, kPixel);
}

TEST_F(Steps, BuildGamutCompressionThenToneMapThenThreads) {
  CompressTo(2.0F);
  host.results.toneMappingApplicable = true;
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre(
          "CHR::IsGamutCompressionApplicable(record)",
          "CHR::ConvertFrame([1 1 1 0], in place, 1, 1, 9/18, BGra, 1, 1/1, BGra, 1, white 100)",
          "CHR::ORVColorSpaceToEquivalentLinearColorSpace(1/1)",
          "CHR::ConvertFrame([2 1 1 0], in place, 1, 1, 1/1, BGra, 1, 1/8, BGra, 1, white 100)",
          "CHR::IsToneMappingApplicable(copy)",
          "PX::ToneMappingUtils::AdjustToneMapSettingsVersionForNCMVersionHandle(3)",
          "ColorSpace::empty(9/18)", "ToneMapControls::GetVersion(3)",
          "CHR::ConvertFrame([0.75 0.75 0.75 0], in place, 1, 1, 9/18, BGra, 1, 1/1, BGra, 1, "
          "white 100)",
          "CHR::ORVColorSpaceToEquivalentLinearColorSpace(1/1)",
          "CHR::ConvertFrame([2 0.75 0.75 0], in place, 1, 1, 1/1, BGra, 1, 1/8, BGra, 1, white "
          "100)",
          "PX::ColorSpaceUtils::IsNewColorManagementEnabled()",
          "PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData(1/1, -1)",
          "ToneMapControls::GetVersion(3)", "CHR::ConvertSignalToLinearValue(1/1, white 100, 1)",
          "orvcore::threads::CreateCPUBoundExecutor()",
          "orvcore::threads::CreateSubExecutor(executor, 1)", "AsyncExecutor.Release()",
          "SubExecutor.Queue(task, 0)", "SubExecutor.WaitForAll()", "SubExecutor.Release()"));
}

TEST_F(Steps, CompressBeforeTheyToneMap) {
  CompressTo(2.0F);
  EXPECT_EQ(Run(), 0);
  const std::vector<float> compressed = pixel;
  EXPECT_NE(compressed, kPixel);
  host.results.toneMappingApplicable = true;
  host.results.convertSignalToLinear = [](const auto&, float) { return 100.0F; };
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(pixel,
              ElementsAre(compressed[0] * 2.0F, compressed[1] * 2.0F, compressed[2] * 2.0F, 0.25F));
}

TEST_F(Steps, RefuseAnUnknownGamutCompression) {
  for (const int algorithm : {0, 3, 7, -1}) {
    SCOPED_TRACE(algorithm);
    host.Reset();
    host.results.gamutCompressionApplicable = true;
    SetToneMap(5);
    SetGamut(algorithm);
    EXPECT_EQ(Run(), kUnknown);
    EXPECT_THAT(host.Messages(),
                ElementsAre(Message{7, "QuillonImpl",
                                    "GenerateGamutMappedFrame : GetGamutCompressionSupportParams "
                                    "failed\r\n"}));
    EXPECT_THAT(host.CallsTo({"CHR::IsToneMappingApplicable"}), IsEmpty());
    ExpectNoThreadAndNoPixelTouched();
  }
}

TEST_F(Steps, AskForTheirOwnTraceCategory) {
  host.results.gamutCompressionApplicable = true;
  host.results.traceChangeCount = 1000;
  SetGamut(7);
  EXPECT_EQ(Run(), kUnknown);
  EXPECT_THAT(host.CallsTo({"orvcore::debug::TraceEnabled"}),
              ElementsAre("orvcore::debug::TraceEnabled(QuillonImpl, 7, true)"));
}

TEST_F(Steps, IgnoreAnUnknownGamutCompressionThatDoesNotApply) {
  SetGamut(7);
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(host.Messages(), IsEmpty());
}

TEST_F(Steps, LeaveReinhardOutUnlessItsLimitExceeds1) {
  for (const float limit : {1.0F, 0.5F, -1.0F, std::nanf("")}) {
    SCOPED_TRACE(limit);
    host.Reset();
    CompressTo(limit);
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(pixel, kPixel);
    EXPECT_THAT(host.CallsTo({"SubExecutor.Queue"}), IsEmpty());

    host.results.toneMappingApplicable = true;
    record.toneMapSettings.controls.version = 2;
    host.results.convertSignalToLinear = [](const auto&, float) { return 100.0F; };
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(pixel, ElementsAre(-2.0F, 1.0F, 2.0F, 0.25F)) << "tone mapping still runs";
    record.toneMapSettings.controls.version = 3;
  }
}

TEST_F(Steps, BindReinhardJustAbove1) {
  CompressTo(std::nextafter(1.0F, 2.0F));
  EXPECT_EQ(Run(), 0);
  EXPECT_NE(pixel, kPixel);
}

TEST_F(Steps, BindReinhardToTheUnconvertedSignalWhenAConversionFails) {
  CompressTo(4.0F);
  host.FailWithCode("CHR::ConvertFrame", -1, 2);
  EXPECT_EQ(Run(), 0);
  EXPECT_EQ(pixel, kPixel);  // a limit of 1.0
}

TEST_F(Steps, BindDesaturationWhateverItsWeights) {
  SetGamut(2);
  host.results.gamutCompressionApplicable = true;
  for (const float weight : {0.0F, 1.0F}) {
    host.results.luminanceCoefficients = {weight, weight, weight};
    EXPECT_EQ(Run(), 0);
    EXPECT_NE(pixel, kPixel);
  }
  EXPECT_THAT(host.CallsTo({"CHR::GetColorConverter"}),
              testing::Each("CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(Steps, GiveGamutCompressionTheRecordsOwnColorManagementInEveryVersion) {
  record.toneMapSettings.controls.version = 2;
  CompressTo(2.0F);
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}), testing::Each(testing::HasSubstr("white 100")));
  EXPECT_EQ(host.CallsTo({"CHR::ConvertFrame"}).size(), 2U);
}

TEST_F(Steps, RefuseAnUnknownToneMapWithTheBuildersMessageAlone) {
  for (const int algorithm : {0, 7, -1}) {
    SCOPED_TRACE(algorithm);
    host.Reset();
    SetToneMap(algorithm);
    EXPECT_EQ(Run(), kUnknown);
    EXPECT_THAT(host.Messages(),
                ElementsAre(Message{
                    7, "Quillon",
                    "GetToneMappingSupportParams : Not implemented for input algorithms : " +
                        std::to_string(algorithm) + "\r\n"}));
    ExpectNoThreadAndNoPixelTouched();
  }
}

TEST_F(Steps, RunTheCurveOfEveryAlgorithm) {
  for (const int algorithm : {2, 3, 4, 6}) {
    SCOPED_TRACE(algorithm);
    host.Reset();
    SetToneMap(algorithm);
    host.results.convertFrame = [peak = 1.0F](const scripted::Conversion& conversion) mutable {
      if (conversion.width == 2) conversion.destination[4] = peak -= 0.25F;
    };
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(host.Messages(), IsEmpty());
    EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils::Adjust"}),
                ElementsAre("PX::ToneMappingUtils::AdjustToneMapSettingsVersionForNCMVersionHandle("
                            "3)"));
    EXPECT_NE(pixel, kPixel);
  }
}

TEST_F(Steps, BindTheHuePreservingCurve) {
  SetToneMap(5);
  EXPECT_EQ(Run(), 0);
  EXPECT_NE(pixel, kPixel);
}

/// What the automatic choice comes to, and what the engine makes of it.
struct Resolution {
  int algorithm;
  int result;
};

TEST_F(Steps, RunWhateverTheAutomaticChoiceResolvesTo) {
  // The vector has the three entries of the hue-preserving curve, fewer than the others read.
  for (const Resolution& resolution :
       {Resolution{5, 0}, Resolution{2, kDegenerate}, Resolution{3, kDegenerate},
        Resolution{4, kDegenerate}, Resolution{6, kDegenerate}, Resolution{1, kUnknown},
        Resolution{0, kUnknown}, Resolution{7, kUnknown}, Resolution{-5, kUnknown}}) {
    SCOPED_TRACE(resolution.algorithm);
    host.Reset();
    SetToneMap(1);
    host.results.automaticChoice = [&](float, ToneMapAlgorithmType& algorithm, float&) {
      algorithm = static_cast<ToneMapAlgorithmType>(resolution.algorithm);
    };
    EXPECT_EQ(Run(), resolution.result);
    EXPECT_THAT(host.Messages(), IsEmpty());
    EXPECT_EQ(host.CallsTo({"PX::ToneMappingUtils::GetAdjusted"}).size(), 1U);
    if (resolution.result < 0) {
      ExpectNoThreadAndNoPixelTouched();
    } else {
      EXPECT_NE(pixel, kPixel);
    }
  }
}

TEST_F(Steps, GiveTheCurveTheKneeOfTheAutomaticChoice) {
  // Scaled peak 10 x 2, destination peak 1: with a knee at the very top, what lies under it keeps
  // its gain alone.
  SetToneMap(1);
  record.toneMapSettings.controls.version = 2;
  host.results.convertSignalToLinear = [](const ColorSpace& colorSpace, float) {
    return colorSpace.Description() == scripted::kHLG ? 10.0F : 4.0F;
  };
  host.results.automaticChoice = [](float peak, ToneMapAlgorithmType& algorithm, float& knee) {
    EXPECT_EQ(peak, 20.0F);
    EXPECT_EQ(knee, 0.5F);
    algorithm = ToneMapAlgorithmType::HuePreservationDesaturation;
    knee = 0.75F;
  };
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(pixel, ElementsAre(-2.0F, 1.0F, 2.0F, 0.25F));
}

TEST_F(Steps, RefuseParametersThatAFailedConversionLeftShort) {
  for (const int algorithm : {2, 3}) {
    for (const int failing : {1, 2}) {
      SCOPED_TRACE(std::to_string(algorithm) + ", conversion " + std::to_string(failing));
      host.Reset();
      SetToneMap(algorithm);
      // Two one-pixel conversions for the peak come first.
      host.FailWithCode("CHR::ConvertFrame", -3, 2 + failing);
      EXPECT_EQ(Run(), kDegenerate);
      EXPECT_THAT(host.Messages(), IsEmpty());
      ExpectNoThreadAndNoPixelTouched();
    }
  }
}

TEST_F(Steps, RefuseBt2390ParametersWithoutRangeOrKnee) {
  // PQ code values of source black, source peak, destination black and destination peak.
  struct Case {
    const char* name;
    float sourceBlack, sourcePeak, destinationBlack, destinationPeak;
  };
  for (const Case& c : {Case{"no range", 0.5F, 0.5F, 0.0F, 0.25F},
                        Case{"negative range", 0.5F, 0.25F, 0.0F, 0.125F},
                        Case{"knee start at 1", 0.0F, 0.5F, 0.0F, 0.5F}}) {
    for (const int algorithm : {2, 3}) {
      SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(algorithm));
      host.Reset();
      SetToneMap(algorithm);
      int conversions = 0;
      host.results.convertFrame = [&](const scripted::Conversion& conversion) {
        if (conversion.width != 2) return;
        const bool source = ++conversions == 1;
        conversion.destination[0] = source ? c.sourceBlack : c.destinationBlack;
        conversion.destination[4] = source ? c.sourcePeak : c.destinationPeak;
      };
      EXPECT_EQ(Run(), kDegenerate);
      EXPECT_EQ(conversions, 2);
      ExpectNoThreadAndNoPixelTouched();
    }
  }
}

TEST_F(Steps, ShareNothingBetweenCalls) {
  cpu::LeaveOnlyTheGain(host);
  EXPECT_EQ(Run(), 0);
  const std::vector<float> first = pixel;
  EXPECT_EQ(Run(), 0);
  EXPECT_EQ(pixel, first);
  host.results.toneMappingApplicable = false;
  EXPECT_EQ(Run(), 0);
  EXPECT_EQ(pixel, kPixel);
}

TEST_F(Steps, LeaveReinhardOutForALimitOfExactly1AndToneMapAllTheSame) {
  cpu::LeaveOnlyTheGain(host);
  host.results.gamutCompressionApplicable = true;  // the signal of 1 comes back unconverted
  record.toneMapSettings.controls.version = 2;
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(pixel, ElementsAre(-2.0F, 1.0F, 2.0F, 0.25F));
}

TEST_F(Steps, RefuseToneMapAlgorithms0And7) {
  host.results.toneMappingApplicable = true;
  for (const int algorithm : {0, 7}) {
    record.toneMapSettings.algorithmType = static_cast<ToneMapAlgorithmType>(algorithm);
    EXPECT_EQ(Run(), kUnknown);
    EXPECT_EQ(pixel, kPixel);
  }
}

TEST_F(Steps, RefuseGamutAlgorithms0And3) {
  host.results.gamutCompressionApplicable = true;
  for (const int algorithm : {0, 3}) {
    record.GamutCompressionSettings::algorithmType =
        static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(algorithm);
    EXPECT_EQ(Run(), kUnknown);
    EXPECT_EQ(pixel, kPixel);
  }
}

TEST_F(Steps, GiveGamutCompressionTheRecordsColorManagementThoughTheVersionSaysDefault) {
  // The tone map's peak, asked for by the same rule of versions, is at the default white.
  record.toneMapSettings.controls.version = 2;
  host.results.gamutCompressionApplicable = true;
  host.results.toneMappingApplicable = true;
  EXPECT_EQ(Run(), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame(", "CHR::ConvertSignalToLinearValue(9/18"}),
              ElementsAre(HasSubstr("white 100"), HasSubstr("white 100"), HasSubstr("white 203")));
}

}  // namespace
