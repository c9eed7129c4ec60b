#include <cmath>
#include <limits>

#include "engine/Quillon.h"
#include "tests/gpu/GPUTest.h"

/// The GPU pipeline, through the engine's one entry.

namespace {

using gpu::Lines;
using gpu::Pushed;
using orvmediatypes::color::ToneMapAlgorithmType;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kUnsupported = static_cast<int>(0xA00F000CU);

class GPUPipeline : public gpu::GPUTest {
 protected:
  void SetUp() override {
    GPUTest::SetUp();
    host.results.toneMappingApplicable = true;
    MakeFrames(scripted::kHLG);
  }

  void MakeFrames(const scripted::ColorDescription& colors) {
    source = scripted::MakeFrame(SetupOf("source", colors));
    destination = scripted::MakeFrame(SetupOf("destination", scripted::kSDR));
  }

  void UseDevice(const scripted::DeviceSetup& setup) {
    device = scripted::MakeDevice(setup);
    MakeFrames(scripted::kHLG);
  }

  int Apply() {
    const scripted::RecordWatch watch(record);
    return Quillon::ApplyGamutMapping(source, record, destination);
  }

  Lines Launches() { return host.CallsTo({"device.Launch"}); }
  Lines Copies() { return host.CallsTo({"KS::GPUFrameManipulators"}); }

  /// The floats of the only launch of a tone-map kernel.
  Lines ToneMapFloats() {
    const Lines pushes = host.CallsTo({"arguments.SetValue"});
    constexpr std::size_t kBeforeFloats = 4;  // auxiliary buffer, pitch, flag, size
    return {pushes.begin() + kBeforeFloats, pushes.end()};
  }
};

TEST_F(GPUPipeline, OneFrameIsNotTouchedWhenNoMappingApplies) {
  host.results.gamutMappingApplicable = false;
  destination = source;
  host.Reset();
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(host.CallsTo({"source.Get", "source.Set", "KS::", "IL::", "device"}), IsEmpty());
}

TEST_F(GPUPipeline, ReinhardWithALimitOfNoMoreThan1LaunchesNothingAndToneMappingStillRuns) {
  host.results.gamutCompressionApplicable = true;
  for (const float limit : {1.0F, 0.5F, -1.0F, std::numeric_limits<float>::quiet_NaN(),
                            -std::numeric_limits<float>::infinity()}) {
    host.Reset();
    host.results.gamutCompressionApplicable = true;
    host.results.toneMappingApplicable = true;
    ConvertPixelsTo(limit);
    EXPECT_EQ(Apply(), 0);
    EXPECT_THAT(Launches(), ElementsAre(HasSubstr("ToneMapKernelHuePreservation"))) << limit;
    EXPECT_THAT(host.CallsTo({"IL::LoadKernel"}), Not(Contains(HasSubstr("Reinhard"))));
  }
}

TEST_F(GPUPipeline, ReinhardRunsJustAbove1) {
  host.results.gamutCompressionApplicable = true;
  for (const float limit : {std::nextafter(1.0F, 2.0F), std::numeric_limits<float>::infinity()}) {
    ConvertPixelsTo(limit);
    EXPECT_EQ(Apply(), 0);
    EXPECT_THAT(host.CallsTo({"arguments.SetValue"}), Contains(Pushed(limit)));
  }
  EXPECT_EQ(Launches().size(), 4U);
}

TEST_F(GPUPipeline, AFrameThatIsNoMultipleOfTheBlockHasAGridRoundedUp) {
  UseDevice({.platformKind = 3});
  for (const auto& [width, height, grid] :
       {std::tuple{1, 1, "1, 1"}, {16, 16, "1, 1"}, {17, 16, "2, 1"}, {70, 35, "5, 3"}}) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    scripted::FrameSetup setup = SetupOf("source", scripted::kHLG);
    setup.bounds = {0, 0, width, height};
    source = scripted::MakeFrame(setup);
    EXPECT_EQ(Apply(), 0);
    EXPECT_THAT(Launches(), ElementsAre(HasSubstr(std::string("arguments, ") + grid + ", 16, 16")));
  }
}

TEST_F(GPUPipeline, ADeviceOfPlatformKind2GetsBlocksOfOneThread) {
  UseDevice({.platformKind = 2, .architectureCode = 1});
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("arguments, 3, 2, 1, 1, 0)")));
}

TEST_F(GPUPipeline, AnEmptyFrameHasAnEmptyGrid) {
  scripted::FrameSetup setup = SetupOf("source", scripted::kLinear709);
  setup.bounds = {0, 0, 0, 0};
  source = scripted::MakeFrame(setup);
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("arguments, 0, 0, 1, 1, 0)")));
}

TEST_F(GPUPipeline, ALinearSourceIsWorkedOnInPlaceAndCopiedOut) {
  MakeFrames(scripted::kLinear709);
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(host.CallsTo({"arguments.SetFrame"}), ElementsAre(HasSubstr("{0x1000,")));
  EXPECT_THAT(host.CallsTo({"KS::CreateGPUVideoFrame"}), IsEmpty());
  EXPECT_THAT(Copies(), ElementsAre("KS::GPUFrameManipulators::CopyFrame(source, destination, 4, "
                                    "white 100)"));
}

TEST_F(GPUPipeline, ALinearSourceThatIsTheDestinationIsNotCopied) {
  MakeFrames(scripted::kLinear709);
  destination = source;
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(Launches().size(), 1U);
  EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(GPUPipeline, AFrameThatIsItsOwnDestinationComesBackByTheFinalCopyWhenNotLinear) {
  destination = source;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Copies(),
              ElementsAre("KS::GPUFrameManipulators::CopyFrame(source, created, 4, white 100)",
                          "KS::GPUFrameManipulators::CopyFrame(created, source, 4, white 100)"));
}

TEST_F(GPUPipeline, EveryCopyAsksForQuality4WhateverTheSettings) {
  for (const int version : {1, 3}) {
    record.toneMapSettings.controls.version = version;
    EXPECT_EQ(Apply(), 0);
  }
  EXPECT_EQ(Copies().size(), 4U);
  EXPECT_THAT(Copies(), testing::Each(HasSubstr(", 4, white")));
}

TEST_F(GPUPipeline, ToneMappingThatDoesNotApplyLeavesTheWorkingFrameUntouched) {
  host.results.toneMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Launches(), IsEmpty());
  EXPECT_EQ(Copies().size(), 2U);
}

TEST_F(GPUPipeline, TheAutomaticChoiceRunsTheKernelThatItResolvesTo) {
  SetToneMap(1);
  host.results.automaticChoice = [](float, ToneMapAlgorithmType& algorithm, float& knee) {
    algorithm = ToneMapAlgorithmType::HuePreservationDesaturation;
    knee = 0.25F;
  };
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("ToneMapKernelHuePreservationDesaturationMain")));
  EXPECT_EQ(ToneMapFloats().at(2), Pushed(0.25F)) << "the knee of the working copy";
}

TEST_F(GPUPipeline, ToneMapAlgorithms0And7AreRefusedAlsoWhenTracingIsOff) {
  std::int32_t changeCount = 100;
  for (const bool traced : {true, false}) {
    for (const int algorithm : {0, 7}) {
      host.Reset();
      host.results.toneMappingApplicable = true;
      host.results.traceEnabled = traced;
      host.results.traceChangeCount = ++changeCount;
      SetToneMap(algorithm);
      EXPECT_EQ(Apply(), kUnsupported);
      EXPECT_EQ(host.Messages().size(), traced ? 3U : 0U);
      EXPECT_THAT(Launches(), IsEmpty());
    }
  }
}

TEST_F(GPUPipeline, BothBt2390KernelsTakeTheSameFloatsAndNoneOfEntries5To9) {
  const auto floatsOf = [&](int algorithm) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    host.results.convertFrame = [](const scripted::Conversion& conversion) {
      if (conversion.width != 2) return;
      conversion.destination[0] = 0.125F;
      conversion.destination[4] = 0.625F;
    };
    host.results.luminanceCoefficients = {0.375F, 0.4375F, 0.1875F};
    SetToneMap(algorithm);
    EXPECT_EQ(Apply(), 0);
    return ToneMapFloats();
  };
  const Lines maxRGB = floatsOf(2);
  EXPECT_EQ(maxRGB, floatsOf(3));
  EXPECT_THAT(maxRGB, ElementsAre(Pushed(0.125F), Pushed(0.625F), Pushed(0.125F), Pushed(0.625F),
                                  Pushed(2.0F), Pushed(0.25F), Pushed(0.75F), Pushed(100.0F),
                                  Pushed(0.375F), Pushed(0.4375F), Pushed(0.1875F)));
}

TEST_F(GPUPipeline, TheHuePreservingKernelTakesEntry2BeforeEntry1) {
  host.results.convertSignalToLinear = [](const auto&, float) { return 8.0F; };
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(ToneMapFloats(),
              ElementsAre(Pushed(1.5F), Pushed(8.0F), Pushed(4.0F), Pushed(2.0F), Pushed(0.25F)));
}

TEST_F(GPUPipeline, FramesOfDifferentBoundsAreLeftToTheCopy) {
  scripted::FrameSetup setup = SetupOf("destination", scripted::kSDR);
  setup.bounds = {1, 2, 30, 20};
  destination = scripted::MakeFrame(setup);
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(host.CallsTo({"destination.GetBounds"}), IsEmpty());
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("arguments, 3, 2, 1, 1, 0)")));
}

TEST_F(GPUPipeline, DevicesBeyondTheCacheLoadAtEveryCall) {
  for (const auto& [kind, ordinal] :
       {std::pair{5, 0}, {1, 4}, {-1, -1}, {std::numeric_limits<int>::min(), 0}}) {
    UseDevice({.platformKind = kind, .ordinal = ordinal});
    host.Reset();
    host.results.toneMappingApplicable = true;
    EXPECT_EQ(Apply(), 0);
    EXPECT_EQ(Apply(), 0);
    EXPECT_EQ(host.CallsTo({"IL::LoadKernel"}).size(), 2U) << kind << ", " << ordinal;
    EXPECT_EQ(Launches().size(), 2U);
  }
}

}  // namespace
