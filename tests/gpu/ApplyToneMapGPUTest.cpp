#include <map>

#include "gpu/ApplyToneMapGPU.h"
#include "tests/gpu/GPUTest.h"

namespace {

using gpu::Lines;
using gpu::Pushed;
using orvmediatypes::color::ToneMapAlgorithmType;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr int kCode = -1;
constexpr int kNotLoaded = static_cast<int>(0xA00F0001U);
constexpr int kUnsupported = static_cast<int>(0xA00F000CU);
constexpr int kDegenerate = static_cast<int>(0xA00F000FU);

class ApplyToneMapGPU : public gpu::GPUTest {
 protected:
  void SetUp() override {
    GPUTest::SetUp();
    host.results.toneMappingApplicable = true;
    working = scripted::MakeFrame(SetupOf("working", scripted::kLinear709));
  }

  int Apply() {
    const scripted::RecordWatch watch(record);
    return Quillon::ApplyToneMapGPU(working, record.toneMapSettings);
  }

  Lines Launches() {
    return host.CallsTo({"IL::", "device.Create", "device.Launch", "arguments."});
  }
};

/// What every kernel is told of a float frame of 3 by 2 pixels on a device of kind 1.
const Lines kHead = {"arguments.SetFrameArgument({0x1000, 3x2, pitch 3, flag 1, 0})",
                     "arguments.SetValueArgument(8, 8, 0x0000000000000000)",
                     "arguments.SetValueArgument(4, 4, 0x00000003)",
                     "arguments.SetValueArgument(4, 4, 0x00000001)",
                     "arguments.SetValueArgument(8, 8, 0x0000000200000003)"};

TEST_F(ApplyToneMapGPU, LeavesTheFrameAloneWhereToneMappingDoesNotApply) {
  host.results.toneMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(host.Calls(), ElementsAre("CHR::IsToneMappingApplicable(record)"));
}

TEST_F(ApplyToneMapGPU, ReadsTheFrameAndRunsTheKernelOnItsDevice) {
  EXPECT_EQ(Apply(), 0);
  const Lines before = {"CHR::IsToneMappingApplicable(record)",
                        "working.QueryInterface(KS::IGPUVideoFrame)",
                        "working.GetDevice()",
                        "working.QueryInterface(KS::ICompletionEventVideoFrame)",
                        "working.QueryInterface(KS::IGPUVideoFrameMemoryAccess)",
                        "working.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                        "working.GetBounds()",
                        "working.GetDevicePointer()",
                        "working.GetRowBytes2D()",
                        "working.GetPixelFormat()",
                        "device.GetDescription()"};
  const std::string name = "ToneMapKernelHuePreservationDesaturationMain";
  const Lines load = {"IL::LoadKernel(device, ToneMapMain, " + name + ")",
                      "device.CreateArguments(" + name + ", 36)"};
  const Lines rest = {Pushed(1.5F),
                      Pushed(1.0F),
                      Pushed(0.5F),
                      Pushed(2.0F),
                      Pushed(0.25F),
                      "arguments.Finalize()",
                      "device.Launch(" + name + ", arguments, 3, 2, 1, 1, 0)",
                      "arguments.DisposeObject()",
                      "arguments.DestroyBlock()"};
  EXPECT_THAT(Launches(), ElementsAreArray(gpu::Joined({load, kHead, rest})));
  const Lines& calls = host.Calls();
  EXPECT_THAT(Lines(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(before.size())),
              ElementsAreArray(before));
  EXPECT_EQ(host.CallsTo({"PX::ToneMappingUtils::AdjustToneMapSettingsVersion"}).size(), 1U)
      << "the parameter step";
  EXPECT_EQ(scripted::StrongCount(working), 1);
}

TEST_F(ApplyToneMapGPU, CountsThePitchInWholePixelsRoundedDown) {
  struct Case {
    std::uint32_t descriptor;
    int rowBytes;
    std::uint32_t pitch;
  };
  constexpr std::uint32_t kFloat = 0x0008013AU;
  constexpr std::uint32_t kHalf = 0x00080136U;
  constexpr std::uint32_t k24Bits = 0x00080138U;  // 12 bytes a pixel
  for (const auto& [descriptor, rowBytes, pitch] :
       {Case{kFloat, 48, 3}, Case{kFloat, 63, 3}, Case{kFloat, 64, 4}, Case{kFloat, 65, 4},
        Case{kFloat, 79, 4}, Case{kHalf, 31, 3}, Case{kHalf, 39, 4}, Case{k24Bits, 47, 3},
        Case{k24Bits, 49, 4}}) {
    SCOPED_TRACE(rowBytes);
    host.Reset();
    host.results.toneMappingApplicable = true;
    scripted::FrameSetup setup = SetupOf("working", scripted::kLinear709);
    setup.format = {0x61724742U, descriptor};
    setup.rowBytes2D = rowBytes;
    working = scripted::MakeFrame(setup);
    EXPECT_EQ(Apply(), 0);
    const std::string number = std::to_string(pitch);
    EXPECT_THAT(host.CallsTo({"arguments.SetFrame"}),
                ElementsAre(testing::HasSubstr("3x2, pitch " + number + ", ")));
    EXPECT_EQ(host.CallsTo({"arguments.SetValue"}).at(1), Pushed(pitch));
  }
}

TEST_F(ApplyToneMapGPU, RunsTheKernelOfEachAlgorithm) {
  const std::map<int, std::string> kKernels = {
      {2, "ToneMapKernelITU2390MaxRGBMain, 60"},
      {3, "ToneMapKernelITU2390RGBByChannel, 60"},
      {4, "ToneMapKernelITU2446A, 40"},
      {5, "ToneMapKernelHuePreservationDesaturationMain, 36"},
      {6, "ToneMapKernelCARToneCurve, 56"}};
  for (const auto& [algorithm, kernel] : kKernels) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    SetToneMap(algorithm);
    EXPECT_EQ(Apply(), 0);
    EXPECT_THAT(host.CallsTo({"device.Create"}),
                ElementsAre("device.CreateArguments(" + kernel + ")"));
    EXPECT_EQ(host.CallsTo({"device.Launch"}).size(), 1U);
  }
}

TEST_F(ApplyToneMapGPU, PassesThePeakAsTheParameterStepAdjustedIt) {
  SetToneMap(4);
  host.results.peakNits = 4000.0F;
  host.results.peakLuminance = 100;
  EXPECT_EQ(Apply(), 0);
  SetToneMap(6);
  ConvertPixelsTo(7.0F);
  EXPECT_EQ(Apply(), 0);
  const Lines pushes = host.CallsTo({"arguments.SetValue"});
  ASSERT_EQ(pushes.size(), 10U + 14U);
  EXPECT_EQ(pushes[4], Pushed(2.0F)) << "BT.2446 A: the gain first";
  EXPECT_EQ(pushes[5], Pushed(0.25F)) << "and the colour preservation";
  EXPECT_EQ(pushes[10 + 4 + 5], Pushed(7.0F)) << "CAR: the peak sixth";
}

TEST_F(ApplyToneMapGPU, LoadsAKernelOnceForADevicesContext) {
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(host.CallsTo({"IL::LoadKernel"}).size(), 1U);
  EXPECT_EQ(host.CallsTo({"device.Launch"}).size(), 2U);

  device = scripted::MakeDevice();  // the same ordinal, another context
  working = scripted::MakeFrame(SetupOf("working", scripted::kLinear709));
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(host.CallsTo({"IL::LoadKernel"}).size(), 2U);
}

TEST_F(ApplyToneMapGPU, ReturnsACodeWithoutAMessageWhereThereIsNoKernel) {
  host.FailWithNothing("IL::LoadKernel");
  EXPECT_EQ(Apply(), kNotLoaded);
  EXPECT_EQ(Apply(), kNotLoaded) << "a null handle is kept";
  EXPECT_THAT(Launches(), ElementsAre("IL::LoadKernel(device, ToneMapMain, "
                                      "ToneMapKernelHuePreservationDesaturationMain)"));
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(ApplyToneMapGPU, TracesAFailedLaunchWithTheMethodsNameAndReturnsItsCode) {
  for (const char* operation :
       {"device.CreateArguments", "arguments.SetFrameArgument", "arguments.SetValueArgument",
        "arguments.Finalize", "device.Launch"}) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    host.FailWithCode(operation, kCode);
    EXPECT_EQ(Apply(), kCode) << operation;
    EXPECT_THAT(Texts(), ElementsAre("ApplyToneMapGPU : Tone Mapping Kernel failed. Tone Mapping "
                                     "Method : tone map 5\r\n"));
    EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils::GetLocalized"}),
                ElementsAre("PX::ToneMappingUtils::GetLocalizedToneMappingMethodName(5, 1)"));
  }
}

TEST_F(ApplyToneMapGPU, TracesALaunchThatFailsWithTheCodeOfAMissingKernel) {
  host.FailWithCode("device.Launch", kNotLoaded);
  EXPECT_EQ(Apply(), kNotLoaded);
  EXPECT_EQ(Texts().size(), 1U);
}

TEST_F(ApplyToneMapGPU, ReturnsAPositiveCodeOfTheLaunch) {
  host.FailWithCode("device.Launch", 3);
  EXPECT_EQ(Apply(), 3);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(ApplyToneMapGPU, RefusesAlgorithmsThatDoNotExist) {
  for (const int algorithm : {0, 7, -1, std::numeric_limits<int>::max()}) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    SetToneMap(algorithm);
    EXPECT_EQ(Apply(), kUnsupported);
    const std::string number = std::to_string(algorithm);
    EXPECT_THAT(
        Texts(),
        ElementsAre("GetToneMappingSupportParams : Not implemented for input algorithms : " +
                        number + "\r\n",
                    "ApplyToneMapGPU : (Not implemented) Tone Map Method Algorithm Type : tone "
                    "map " +
                        number + "\r\n"));
    EXPECT_THAT(Launches(), IsEmpty());
    EXPECT_THAT(host.CallsTo({"PX::ToneMappingUtils::GetLocalized"}),
                testing::Contains("PX::ToneMappingUtils::GetLocalizedToneMappingMethodName(" +
                                  number + ", 1)"));
  }
}

TEST_F(ApplyToneMapGPU, RefusesAnAutomaticChoiceThatChoosesNothing) {
  SetToneMap(1);
  host.results.automaticChoice = [](float, ToneMapAlgorithmType&, float&) {};
  EXPECT_EQ(Apply(), kUnsupported);
  EXPECT_THAT(Texts(), ElementsAre("ApplyToneMapGPU : (Not implemented) Tone Map Method Algorithm "
                                   "Type : tone map 1\r\n"));
}

TEST_F(ApplyToneMapGPU, RefusesAVectorTooShortForItsKernelBeforeLoadingIt) {
  // The automatic choice always yields the three hue-preserving entries.
  SetToneMap(1);
  for (const int chosen : {2, 3, 4, 6}) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    host.results.automaticChoice = [&](float, ToneMapAlgorithmType& algorithm, float&) {
      algorithm = static_cast<ToneMapAlgorithmType>(chosen);
    };
    EXPECT_EQ(Apply(), kDegenerate) << chosen;
    EXPECT_THAT(Launches(), IsEmpty());
    EXPECT_THAT(Texts(), IsEmpty());
  }
}

TEST_F(ApplyToneMapGPU, RefusesTheShortVectorsOfFailedConversions) {
  for (const int nth : {1, 2}) {  // an empty vector, and one of two entries
    host.Reset();
    host.results.toneMappingApplicable = true;
    SetToneMap(2);
    host.FailWithCode("CHR::ConvertFrame", kCode, nth + 2);  // after those of the peak
    EXPECT_EQ(Apply(), kDegenerate) << nth;
    EXPECT_THAT(Launches(), IsEmpty());
  }
}

TEST_F(ApplyToneMapGPU, RefusesPixelFormatsWithoutADepthBeforeTheDivision) {
  scripted::FrameSetup setup = SetupOf("working", scripted::kLinear709);
  setup.format = {0x61724742U, 0x0008013CU};
  working = scripted::MakeFrame(setup);
  EXPECT_EXIT(std::_Exit(Apply() == kUnsupported && Launches().empty() ? 7 : 1),
              testing::ExitedWithCode(7), "");
}

TEST_F(ApplyToneMapGPU, RaisesTheNullHandleExceptionForAFrameThatIsNotOnAGPU) {
  for (const char* query :
       {"working.QueryInterface(KS::IGPUVideoFrame)",
        "working.QueryInterface(KS::IGPUVideoFrameMemoryAccess)",
        "working.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)", "working.GetDevice"}) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    host.FailWithNothing(query);
    EXPECT_THROW(Apply(), scripted::NullHandleException) << query;
    EXPECT_EQ(host.CallsTo({"orvcore::config::DoThrowNullPtrException"}).size(), 1U);
    EXPECT_THAT(Launches(), IsEmpty());
  }
}

TEST_F(ApplyToneMapGPU, NamesTheInterfaceThatIsMissing) {
  host.FailWithNothing("working.QueryInterface(KS::IGPUVideoFrameMemoryAccess)");
  EXPECT_THROW(Apply(), scripted::NullHandleException);
  EXPECT_THAT(host.CallsTo({"orvcore::"}),
              ElementsAre("orvcore::debug::GetTypeName(N2KS26IGPUVideoFrameMemoryAccessE)",
                          "orvcore::config::DoThrowNullPtrException(type "
                          "N2KS26IGPUVideoFrameMemoryAccessE)"));
}

TEST_F(ApplyToneMapGPU, AsksForTheCompletionEventAndDoesNotWait) {
  scripted::FrameSetup setup = SetupOf("working", scripted::kLinear709);
  setup.hasCompletionEvent = true;
  working = scripted::MakeFrame(setup);
  EXPECT_EQ(Apply(), 0);
  EXPECT_EQ(host.CallsTo({"working.QueryInterface(KS::ICompletionEvent"}).size(), 1U);
  EXPECT_THAT(host.CallsTo({"working.WaitForCompletion"}), IsEmpty());
  EXPECT_EQ(host.CallsTo({"device.Launch"}).size(), 1U);
}

}  // namespace
