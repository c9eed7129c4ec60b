#include <limits>

#include "gpu/ApplyGamutMappingGPU.h"
#include "tests/gpu/GPUTest.h"

namespace {

using gpu::Lines;
using gpu::Pushed;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using scripted::FrameOf;
using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kCode = -1;
constexpr int kNotLoaded = static_cast<int>(0xA00F0001U);
constexpr int kUnsupported = static_cast<int>(0xA00F000CU);
constexpr int kDegenerate = static_cast<int>(0xA00F000FU);

constexpr const char* kFinalCopy =
    "KS::GPUFrameManipulators::CopyFrame(created, destination, 4, white 100)";

/// Two frames, the destination on a device of its own.
class ApplyGamutMappingGPU : public gpu::GPUTest {
 protected:
  void SetUp() override {
    GPUTest::SetUp();
    Prepare();
    source = scripted::MakeFrame(SetupOf("source", scripted::kHLG));
    scripted::FrameSetup setup = SetupOf("destination", scripted::kSDR);
    setup.device = otherDevice;
    destination = scripted::MakeFrame(setup);
  }

  /// A fresh log; both steps apply, Reinhard's limit is 4.
  void Prepare() {
    host.Reset();
    host.results.gamutCompressionApplicable = true;
    host.results.toneMappingApplicable = true;
    ConvertPixelsTo(4.0F);
  }

  int Apply() {
    const scripted::RecordWatch watch(record);
    return Quillon::ApplyGamutMappingGPU(source, record, destination);
  }

  Lines Launches() { return host.CallsTo({"device.Launch", "other.Launch"}); }

  std::shared_ptr<scripted::Device> otherDevice =
      scripted::MakeDevice({.name = "other", .ordinal = 1, .architectureCode = 1});
};

Lines LaunchLines(const std::string& device, const std::string& kernel, const std::string& count,
                  const std::vector<float>& floats, const std::string& geometry) {
  Lines lines = {"IL::LoadKernel(" + device + ", ToneMapMain, " + kernel + ")",
                 device + ".CreateArguments(" + kernel + ", " + count + ")",
                 "arguments.SetFrameArgument({0x2000, 3x2, pitch 3, flag 1, 0})",
                 "arguments.SetValueArgument(8, 8, 0x0000000000000000)",
                 "arguments.SetValueArgument(4, 4, 0x00000003)",
                 "arguments.SetValueArgument(4, 4, 0x00000001)",
                 "arguments.SetValueArgument(8, 8, 0x0000000200000003)"};
  for (const float value : floats) lines.push_back(Pushed(value));
  return gpu::Joined(
      {lines,
       {"arguments.Finalize()", device + ".Launch(" + kernel + ", arguments, " + geometry + ", 0)",
        "arguments.DisposeObject()", "arguments.DestroyBlock()"}});
}

Lines ReadFrameLines(const std::string& frame, const std::string& device) {
  return {frame + ".QueryInterface(KS::ICompletionEventVideoFrame)",
          frame + ".QueryInterface(KS::IGPUVideoFrameMemoryAccess)",
          frame + ".QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
          frame + ".GetBounds()",
          frame + ".GetDevicePointer()",
          frame + ".GetRowBytes2D()",
          frame + ".GetPixelFormat()",
          device + ".GetDescription()"};
}

TEST_F(ApplyGamutMappingGPU, OnlyCopiesWhenNoMappingApplies) {
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre("ToneMapControls::GetVersion(3)", "CHR::IsGamutMappingApplicable(record)",
                  "KS::GPUFrameManipulators::CopyFrame(source, destination, 4, white 203)"));
}

TEST_F(ApplyGamutMappingGPU, CopiesWithDefaultColorManagementInAnyVersionWhenNoMappingApplies) {
  for (const int version : {2, 3, 4}) {
    Prepare();
    host.results.gamutMappingApplicable = false;
    record.toneMapSettings.controls.version = version;
    EXPECT_EQ(Apply(), 0);
    EXPECT_THAT(
        host.CallsTo({"KS::"}),
        ElementsAre("KS::GPUFrameManipulators::CopyFrame(source, destination, 4, white 203)"));
  }
}

TEST_F(ApplyGamutMappingGPU, TracesAFailedCopyWhenNoMappingAppliesAndReturnsItsCode) {
  host.results.gamutMappingApplicable = false;
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", kCode);
  EXPECT_EQ(Apply(), kCode);
  EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingGPU : No operation Copy frame failed\r\n"));
}

TEST_F(ApplyGamutMappingGPU, ReturnsAPositiveCodeOfTheCopyWhenNoMappingApplies) {
  host.results.gamutMappingApplicable = false;
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", 5);
  EXPECT_EQ(Apply(), 5);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(ApplyGamutMappingGPU, LinearizesCompressesToneMapsAndCopiesInThisOrder) {
  EXPECT_EQ(Apply(), 0);
  const Lines linearize = {
      "ToneMapControls::GetVersion(3)",
      "CHR::IsGamutMappingApplicable(record)",
      "source.QueryInterface(KS::IGPUVideoFrame)",
      "source.GetDevice()",
      "source.GetColorSpace()",
      "ColorSpace::IsLinear(9/18)",
      "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)",
      "source.GetPixelFormat()",
      "source.GetBounds()",
      "source.GetPixelAspectRatio()",
      "source.GetFieldType()",
      "source.GetOrigin()",
      "KS::CreateGPUVideoFrame(none, device, BGra, 3, 2, 1:1, field 0, (0 0), 9/8, 0, 0, 0, none, "
      "none, false)",
      "KS::GPUFrameManipulators::CopyFrame(source, created, 4, white 100)",
      "destination.QueryInterface(KS::IGPUVideoFrame)",
      "destination.GetDevice()"};
  const Lines compress = {
      "CHR::IsGamutCompressionApplicable(record)",
      "CHR::ConvertFrame([1 1 1 0], in place, 1, 1, 9/18, BGra, 1, 1/1, BGra, 1, white 100)",
      "CHR::ORVColorSpaceToEquivalentLinearColorSpace(1/1)",
      "CHR::ConvertFrame([4 1 1 0], in place, 1, 1, 1/1, BGra, 1, 1/8, BGra, 1, white 100)"};
  const Lines toneMap = {"CHR::IsToneMappingApplicable(record)",
                         "created.QueryInterface(KS::IGPUVideoFrame)", "created.GetDevice()"};
  const Lines end = {kFinalCopy, "created.DisposeObject()", "created.DestroyBlock()"};

  const Lines first = gpu::Joined(
      {linearize, ReadFrameLines("created", "other"), compress,
       LaunchLines("other", "GamutCompressionKernelReinhard", "20", {4.0F}, "1, 2, 64, 1"), toneMap,
       ReadFrameLines("created", "device")});
  const Lines last =
      gpu::Joined({LaunchLines("device", "ToneMapKernelHuePreservationDesaturationMain", "36",
                               {8.0F, 1.0F, 0.5F, 2.0F, 0.25F}, "3, 2, 1, 1"),
                   end});
  const Lines& calls = host.Calls();
  ASSERT_GT(calls.size(), first.size() + last.size());
  EXPECT_THAT(Lines(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(first.size())),
              ElementsAreArray(first));
  EXPECT_THAT(Lines(calls.end() - static_cast<std::ptrdiff_t>(last.size()), calls.end()),
              ElementsAreArray(last));
  EXPECT_EQ(FrameOf(destination).Setup().name, "destination");
  EXPECT_EQ(scripted::StrongCount(source), 1);
  EXPECT_EQ(scripted::StrongCount(destination), 1);
}

TEST_F(ApplyGamutMappingGPU, PassesThreeWeightsToTheDesaturation) {
  SetGamutCompression(2);
  host.results.toneMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(host.CallsTo({"IL::", "other.Create", "other.Launch", "arguments."}),
              ElementsAreArray(LaunchLines("other", "GamutCompressionKernelDesaturation", "28",
                                           {0.25F, 0.5F, 0.125F}, "1, 2, 64, 1")));
}

TEST_F(ApplyGamutMappingGPU, LinearizesOnTheSourcesDeviceAndCompressesOnTheDestinations) {
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(host.CallsTo({"KS::CreateGPUVideoFrame"}),
              ElementsAre(HasSubstr("CreateGPUVideoFrame(none, device,")));
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("other.Launch(GamutCompressionKernelReinhard"),
                                      HasSubstr("device.Launch(ToneMapKernelHuePreservation")));
}

TEST_F(ApplyGamutMappingGPU, UsesDefaultColorManagementForBothCopiesBelowVersion3) {
  for (const auto& [version, white] :
       {std::pair{-1, "white 203"}, {2, "white 203"}, {3, "white 100"}, {4, "white 100"}}) {
    Prepare();
    record.toneMapSettings.controls.version = version;
    EXPECT_EQ(Apply(), 0);
    EXPECT_THAT(host.CallsTo({"KS::GPUFrameManipulators"}),
                ElementsAre(AllOf(HasSubstr("(source, created, 4, "), HasSubstr(white)),
                            AllOf(HasSubstr("(created, destination, 4, "), HasSubstr(white))));
  }
}

TEST_F(ApplyGamutMappingGPU, ToneMapsWithoutGamutCompressionWhereNoneApplies) {
  host.results.gamutCompressionApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("ToneMapKernelHuePreservationDesaturationMain")));
  EXPECT_THAT(host.CallsTo({kFinalCopy}), ElementsAre(kFinalCopy));
}

TEST_F(ApplyGamutMappingGPU, AsksWhetherToToneMapWhateverTheCompressionDid) {
  host.results.toneMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(Launches(), ElementsAre(HasSubstr("GamutCompressionKernelReinhard")));
  EXPECT_EQ(host.CallsTo({"CHR::IsToneMappingApplicable"}).size(), 1U);
  EXPECT_THAT(host.CallsTo({kFinalCopy}), ElementsAre(kFinalCopy));
}

TEST_F(ApplyGamutMappingGPU, DoesNotCopyAWorkingFrameThatIsTheDestination) {
  source = scripted::MakeFrame(SetupOf("source", scripted::kLinear709));
  destination = source;
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(Launches().size(), 2U);
  EXPECT_THAT(host.CallsTo({"KS::"}), IsEmpty());
}

TEST_F(ApplyGamutMappingGPU, ReturnsTheResultOfTheLastStep) {
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", 3);
  host.FailWithCode("other.Launch", 4);
  host.FailWithCode("device.Launch", 5);
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", 6, 2);
  EXPECT_EQ(Apply(), 6);

  source = scripted::MakeFrame(SetupOf("source", scripted::kLinear709));
  destination = source;
  host.FailWithCode("device.Launch", 5, 2);
  EXPECT_EQ(Apply(), 5);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(ApplyGamutMappingGPU, TracesAFailedLinearization) {
  host.FailWithCode("KS::CreateGPUVideoFrame", kCode);
  EXPECT_EQ(Apply(), kCode);
  EXPECT_THAT(Texts(), ElementsAre("LinearizeFrame : CreateGPUVideoFrame failed\r\n",
                                   "ApplyGamutMappingGPU : Source or Destination frame "
                                   "linearisation changed\r\n"));
  EXPECT_THAT(Launches(), IsEmpty());
}

TEST_F(ApplyGamutMappingGPU, TracesAFailedCompressionLaunchAndToneMapsNothing) {
  for (const auto& [algorithm, name] :
       {std::pair{1, "gamut compression 1"}, {2, "gamut compression 2"}}) {
    Prepare();
    SetGamutCompression(algorithm);
    host.FailWithCode("other.Launch", kCode);
    EXPECT_EQ(Apply(), kCode);
    EXPECT_THAT(Texts(), ElementsAre(std::string("ApplyGamutMappingGPU : Gamut Mapping Kernel "
                                                 "failed. Gamut Compression Method : ") +
                                     name + "\r\n"));
    EXPECT_THAT(host.CallsTo({"PX::GamutMappingUtils::Get"}),
                ElementsAre("PX::GamutMappingUtils::GetGamutCompressionMethodName(" +
                            std::to_string(algorithm) + ", 1)"));
    EXPECT_THAT(host.CallsTo({"CHR::IsToneMappingApplicable", "device.Launch", kFinalCopy}),
                IsEmpty());
  }
}

TEST_F(ApplyGamutMappingGPU, ReturnsACodeWithoutAMessageWhereThereIsNoCompressionKernel) {
  for (const int algorithm : {1, 2}) {
    Prepare();
    otherDevice = scripted::MakeDevice({.name = "other"});
    scripted::FrameSetup setup = SetupOf("destination", scripted::kSDR);
    setup.device = otherDevice;
    destination = scripted::MakeFrame(setup);
    SetGamutCompression(algorithm);
    host.FailWithNothing("IL::LoadKernel");
    EXPECT_EQ(Apply(), kNotLoaded);
    EXPECT_THAT(Texts(), IsEmpty());
    EXPECT_THAT(Launches(), IsEmpty());
    EXPECT_THAT(host.CallsTo({kFinalCopy}), IsEmpty());
  }
}

TEST_F(ApplyGamutMappingGPU, TracesACompressionThatDoesNotExistByItsParameters) {
  for (const int algorithm : {0, 3, -1, std::numeric_limits<int>::max()}) {
    Prepare();
    SetGamutCompression(algorithm);
    EXPECT_EQ(Apply(), kUnsupported);
    EXPECT_THAT(Texts(),
                ElementsAre("ApplyGamutMappingGPU : GetGamutCompressionSupportParams failed\r\n"));
    EXPECT_THAT(Launches(), IsEmpty());
    EXPECT_THAT(host.CallsTo({"CHR::IsToneMappingApplicable", kFinalCopy}), IsEmpty());
  }
}

TEST_F(ApplyGamutMappingGPU, TracesAToneMapThatFailed) {
  host.FailWithCode("device.Launch", kCode);
  EXPECT_EQ(Apply(), kCode);
  EXPECT_THAT(Texts(), ElementsAre("ApplyToneMapGPU : Tone Mapping Kernel failed. Tone Mapping "
                                   "Method : tone map 5\r\n",
                                   "ApplyGamutMappingGPU : ApplyToneMapGPU failed\r\n"));
  EXPECT_THAT(host.CallsTo({kFinalCopy}), IsEmpty());
}

TEST_F(ApplyGamutMappingGPU, TracesAToneMapWithoutAKernelOrWithAShortVector) {
  host.FailWithNothing("IL::LoadKernel", 2);
  EXPECT_EQ(Apply(), kNotLoaded);
  EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingGPU : ApplyToneMapGPU failed\r\n"));

  Prepare();
  SetToneMap(1);
  host.results.automaticChoice = [](float, auto& algorithm, float&) {
    algorithm = orvmediatypes::color::ToneMapAlgorithmType::ITU2390MaxRGB;
  };
  EXPECT_EQ(Apply(), kDegenerate);
  EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingGPU : ApplyToneMapGPU failed\r\n"));
}

TEST_F(ApplyGamutMappingGPU, TracesAFailedFinalCopy) {
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", kCode, 2);
  EXPECT_EQ(Apply(), kCode);
  EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingGPU : Copy to output frame failed\r\n"));
}

TEST_F(ApplyGamutMappingGPU, TracesNothingWhileTracingIsOffAndReturnsTheSameCodes) {
  host.results.traceEnabled = false;
  host.results.traceChangeCount = 1000;
  host.FailWithCode("device.Launch", kCode);
  EXPECT_EQ(Apply(), kCode);
  EXPECT_THAT(host.Messages(), IsEmpty());
  EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils::GetLocalized"}), IsEmpty());
}

TEST_F(ApplyGamutMappingGPU, RefusesPixelFormatsWithoutADepthBeforeTheDivision) {
  scripted::FrameSetup setup = SetupOf("source", scripted::kHLG);
  setup.format = {0x61724742U, 0x0008013EU};
  source = scripted::MakeFrame(setup);
  EXPECT_EXIT(std::_Exit(Apply() == kUnsupported && Launches().empty() ? 7 : 1),
              testing::ExitedWithCode(7), "");
}

TEST_F(ApplyGamutMappingGPU, RaisesTheNullHandleExceptionForFramesThatAreNotOnAGPU) {
  for (const char* operation :
       {"source.QueryInterface(KS::IGPUVideoFrame)", "source.GetDevice",
        "destination.QueryInterface(KS::IGPUVideoFrame)", "destination.GetDevice",
        "created.QueryInterface(KS::IGPUVideoFrameMemoryAccess)",
        "created.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)"}) {
    Prepare();
    host.FailWithNothing(operation);
    EXPECT_THROW(Apply(), scripted::NullHandleException) << operation;
    EXPECT_THAT(Launches(), IsEmpty());
  }
}

class RunGamutCompressionKernel : public gpu::GPUTest {
 protected:
  int Run(int algorithm, const Quillon::SupportVector& params) {
    working = scripted::MakeFrame(SetupOf("working", scripted::kLinear709));
    Quillon::KernelTarget target;
    EXPECT_EQ(Quillon::MakeKernelTarget(working, device, target), 0);
    return Quillon::RunGamutCompressionKernel(
        target, static_cast<GamutCompressionAlgorithmType>(algorithm), params);
  }
};

TEST_F(RunGamutCompressionKernel, RefusesAnAlgorithmThatDoesNotExistByName) {
  EXPECT_EQ(Run(7, {1.0F, 2.0F, 3.0F}), kUnsupported);
  EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingGPU : (Not implemented) Gamut Compression "
                                   "Algorithm Type : gamut compression 7\r\n"));
  EXPECT_THAT(host.CallsTo({"PX::GamutMappingUtils"}),
              ElementsAre("PX::GamutMappingUtils::GetGamutCompressionMethodName(7, 1)"));
  EXPECT_THAT(host.CallsTo({"IL::", "device.Launch"}), IsEmpty());
}

TEST_F(RunGamutCompressionKernel, RefusesAVectorTooShortForItsKernel) {
  EXPECT_EXIT(std::_Exit(Run(1, {}) == kDegenerate && Run(2, {}) == kDegenerate &&
                                 Run(2, {1.0F, 2.0F}) == kDegenerate
                             ? 7
                             : 1),
              testing::ExitedWithCode(7), "");
}

}  // namespace
