#include <map>

#include "gpu/KernelTarget.h"
#include "gpu/Kernels.h"
#include "tests/gpu/GPUTest.h"

namespace {

using gpu::Lines;
using gpu::Pushed;
using Quillon::KernelSignature;
using Quillon::SupportVector;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr std::array<float, 13> kParams = {0.25F, 1.25F, 2.25F, 3.25F,  4.25F,  5.25F, 6.25F,
                                           7.25F, 8.25F, 9.25F, 10.25F, 11.25F, 12.25F};
constexpr float kPeak = 100.0F;
constexpr float kGain = 200.0F;
constexpr float kPreservation = 300.0F;

template <class Curve>
const KernelSignature* KernelOf() {
  return &Curve::kFacts.kernel;
}

/// What a kernel is to be given.
struct Expected {
  const KernelSignature* kernel;
  std::string name;
  std::string byValueBytes;
  std::vector<float> floats;
};

/// Entry n of the vector is n and a quarter.
const Expected kExpected[] = {
    {KernelOf<Quillon::GamutCompressionReinhard>(),
     "GamutCompressionKernelReinhard",
     "20",
     {0.25F}},
    {KernelOf<Quillon::GamutCompressionDesaturation>(),
     "GamutCompressionKernelDesaturation",
     "28",
     {0.25F, 1.25F, 2.25F}},
    {KernelOf<Quillon::HuePreservationToneMap>(),
     "ToneMapKernelHuePreservationDesaturationMain",
     "36",
     {0.25F, 2.25F, 1.25F, kGain, kPreservation}},
    {KernelOf<Quillon::Bt2446AToneMap>(),
     "ToneMapKernelITU2446A",
     "40",
     {kGain, kPreservation, 0.25F, 1.25F, 2.25F, 3.25F}},
    {KernelOf<Quillon::CARToneMap>(),
     "ToneMapKernelCARToneCurve",
     "56",
     {0.25F, kGain, 1.25F, 2.25F, kPreservation, kPeak, 3.25F, 4.25F, 5.25F, 6.25F}},
    {KernelOf<Quillon::Bt2390RGBByChannelToneMap>(),
     "ToneMapKernelITU2390RGBByChannel",
     "60",
     {0.25F, 1.25F, 2.25F, 3.25F, kGain, kPreservation, kPeak, 4.25F, 10.25F, 11.25F, 12.25F}},
    {KernelOf<Quillon::Bt2390MaxRGBToneMap>(),
     "ToneMapKernelITU2390MaxRGBMain",
     "60",
     {0.25F, 1.25F, 2.25F, 3.25F, kGain, kPreservation, kPeak, 4.25F, 10.25F, 11.25F, 12.25F}},
};

class KernelArguments : public gpu::GPUTest {
 protected:
  /// Launches a kernel over a half-float frame of 3 by 2 pixels whose rows are 40 bytes apart.
  void Launch(const Expected& expected, int platformKind) {
    device = scripted::MakeDevice({.platformKind = platformKind, .architectureCode = 1});
    scripted::FrameSetup setup = SetupOf("frame", scripted::kLinear709);
    setup.format = gpu::kBgraHalf;
    setup.rowBytes = 40;
    setup.devicePointer = 0x123456789abcdef0;
    working = scripted::MakeFrame(setup);
    Quillon::KernelTarget target;
    ASSERT_EQ(Quillon::MakeKernelTarget(working, device, target), 0);
    Quillon::PreparedKernel prepared;
    ASSERT_EQ(
        Quillon::PrepareKernel(
            target, *expected.kernel, SupportVector(kParams.begin(), kParams.end()),
            {.version = 3, .peak = kPeak, .peakGain = kGain, .colorPreservation = kPreservation},
            prepared),
        0);
    EXPECT_EQ(Quillon::RunKernel(target, prepared), 0);
  }

  static Lines LinesOf(const Expected& expected, const std::string& auxiliaryBuffer,
                       const std::string& geometry) {
    Lines lines = {"device.CreateArguments(" + expected.name + ", " + expected.byValueBytes + ")",
                   "arguments.SetFrameArgument({0x123456789abcdef0, 3x2, pitch 5, flag 0, 0})",
                   auxiliaryBuffer,
                   "arguments.SetValueArgument(4, 4, 0x00000005)",
                   "arguments.SetValueArgument(4, 4, 0x00000000)",
                   "arguments.SetValueArgument(8, 8, 0x0000000200000003)"};
    for (const float value : expected.floats) lines.push_back(Pushed(value));
    return gpu::Joined({lines,
                        {"arguments.Finalize()",
                         "device.Launch(" + expected.name + ", arguments, " + geometry + ", 0)",
                         "arguments.DisposeObject()", "arguments.DestroyBlock()"}});
  }
};

TEST_F(KernelArguments, ArePushedInTheOrderOfEachKernelOnEveryPlatform) {
  struct Platform {
    int kind;
    std::string auxiliaryBuffer;
    std::string geometry;
  };
  const std::string asValue = "arguments.SetValueArgument(8, 8, 0x0000000000000000)";
  const std::string asMemory = "arguments.SetMemoryArgument(0, 0)";
  const Platform kPlatforms[] = {
      {0, asValue, "1, 2, 64, 1"},   {1, asValue, "1, 2, 64, 1"},  {2, asMemory, "3, 2, 1, 1"},
      {3, asMemory, "1, 1, 16, 16"}, {4, asMemory, "1, 2, 64, 1"}, {5, asValue, "1, 2, 64, 1"},
      {-1, asValue, "1, 2, 64, 1"},
  };
  for (const Platform& platform : kPlatforms) {
    for (const Expected& expected : kExpected) {
      SCOPED_TRACE(expected.name + " on platform kind " + std::to_string(platform.kind));
      host.Reset();
      Launch(expected, platform.kind);
      EXPECT_THAT(host.CallsTo({"device.Create", "device.Launch", "arguments."}),
                  ElementsAreArray(LinesOf(expected, platform.auxiliaryBuffer, platform.geometry)));
    }
  }
}

TEST_F(KernelArguments, Count16BytesAnd4PerFloatByValue) {
  for (const Expected& expected : kExpected) {
    const KernelSignature& signature = *expected.kernel;
    EXPECT_EQ(signature.name, expected.name);
    EXPECT_EQ(std::to_string(16 + 4 * signature.floatCount), expected.byValueBytes);
    EXPECT_EQ(signature.floatCount, expected.floats.size());
  }
  EXPECT_EQ(std::size(kExpected), Quillon::kKernels.size());
}

TEST_F(KernelArguments, NeedEveryEntryUpToTheLastOneRead) {
  const std::map<const KernelSignature*, std::size_t> kEntries = {
      {KernelOf<Quillon::GamutCompressionReinhard>(), 1},
      {KernelOf<Quillon::GamutCompressionDesaturation>(), 3},
      {KernelOf<Quillon::HuePreservationToneMap>(), 3},
      {KernelOf<Quillon::Bt2446AToneMap>(), 4},
      {KernelOf<Quillon::CARToneMap>(), 7},
      {KernelOf<Quillon::Bt2390RGBByChannelToneMap>(), 13},
      {KernelOf<Quillon::Bt2390MaxRGBToneMap>(), 13},
  };
  for (const auto& [kernel, entries] : kEntries) {
    Quillon::KernelArguments arguments;
    EXPECT_EQ(Quillon::SetKernelFloats(*kernel, SupportVector(entries - 1), {}, arguments),
              static_cast<int>(0xA00F000FU));
    EXPECT_EQ(arguments.floatCount, 0U);
    EXPECT_EQ(Quillon::SetKernelFloats(*kernel, SupportVector(entries), {}, arguments), 0);
    EXPECT_EQ(arguments.floatCount, kernel->floatCount);
  }
}

TEST_F(KernelArguments, TellTheKernelOfEveryFormat) {
  struct Case {
    orvmediatypes::PixelFormat format;
    const char* frame;
    const char* flag;
  };
  const Case kCases[] = {
      {{0x61724742U, 0x00080130U},
       "arguments.SetFrameArgument({0x1000, 3x2, pitch 12, flag 1, 0})",
       "0x00000001"},
      {{0x61724742U, 0x00080132U},
       "arguments.SetFrameArgument({0x1000, 3x2, pitch 12, flag 1, 0})",
       "0x00000001"},
      {{0x61724742U, 0x00080134U},
       "arguments.SetFrameArgument({0x1000, 3x2, pitch 6, flag 1, 0})",
       "0x00000001"},
      {gpu::kBgraHalf, "arguments.SetFrameArgument({0x1000, 3x2, pitch 6, flag 0, 0})",
       "0x00000000"},
      {{0x61724742U, 0x00080138U},
       "arguments.SetFrameArgument({0x1000, 3x2, pitch 4, flag 1, 0})",
       "0x00000001"},
      {orvmediatypes::kLinearFloatBGRA,
       "arguments.SetFrameArgument({0x1000, 3x2, pitch 3, flag 1, 0})", "0x00000001"},
  };
  for (const Case& c : kCases) {
    host.Reset();
    scripted::FrameSetup setup = SetupOf("frame", scripted::kLinear709);
    setup.format = c.format;
    working = scripted::MakeFrame(setup);
    Quillon::KernelTarget target;
    ASSERT_EQ(Quillon::MakeKernelTarget(working, device, target), 0);
    Quillon::PreparedKernel prepared;
    ASSERT_EQ(Quillon::PrepareKernel(target, *KernelOf<Quillon::GamutCompressionReinhard>(),
                                     SupportVector(1), {}, prepared),
              0);
    EXPECT_EQ(Quillon::RunKernel(target, prepared), 0);
    EXPECT_THAT(host.CallsTo({"arguments.SetFrame"}), ElementsAre(c.frame));
    EXPECT_EQ(host.CallsTo({"arguments.SetValue"}).at(2),
              std::string("arguments.SetValueArgument(4, 4, ") + c.flag + ")");
  }
}

}  // namespace
