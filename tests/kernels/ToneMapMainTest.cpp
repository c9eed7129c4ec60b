// The engine's kernels on devices against the same curves on the processor: the same bits.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "curves/Bt2390Linear.h"
#include "curves/Bt2446A.h"
#include "curves/Car.h"
#include "curves/GamutDesaturation.h"
#include "curves/GamutReinhard.h"
#include "curves/HuePreservation.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tests/devices/DeviceFrames.h"
#include "tests/devices/EveryDevice.h"
#include "tests/kernels/KernelRun.h"
#include "tests/refhost/Spaces.h"

namespace {

constexpr float kRed = 0.2627F;
constexpr float kGreen = 0.6780F;
constexpr float kBlue = 0.0593F;

/// A kernel with its floats, and what it is to do to a pixel.
struct Kernel {
  std::string name;
  std::vector<float> floats;
  std::function<void(float*)> curve;
};

Bt2390LinearParams EetfParams1000To203() {
  return {.sourceBlack = 0.0F,
          .sourcePeak = 0.751827F,
          .destinationBlack = 0.0F,
          .destinationPeak = 0.5806889F,
          .referenceWhite = 203.0F,
          .gain = 1.2F,
          .desaturationPeak = 4.926F,
          .colorPreservation = 0.4F,
          .weightRed = kRed,
          .weightGreen = kGreen,
          .weightBlue = kBlue};
}

std::vector<float> Bt2390Floats() {
  return {0.0F, 0.751827F, 0.0F, 0.5806889F, 1.2F, 0.4F, 4.926F, 203.0F, kRed, kGreen, kBlue};
}

std::vector<Kernel> AllKernels() {
  return {
      {"GamutCompressionKernelReinhard", {1.3F}, [](float* p) { CompressGamutReinhard(p, 1.3F); }},
      {"GamutCompressionKernelDesaturation",
       {kRed, kGreen, kBlue},
       [](float* p) { CompressGamutDesaturation(p, kRed, kGreen, kBlue); }},
      // peak, destination's peak, knee, gain, colour preservation
      {"ToneMapKernelHuePreservationDesaturationMain",
       {4.926F, 1.0F, 0.4F, 1.2F, 0.3F},
       [](float* p) { HuePreservingDesaturation(p, 1.2F, 4.926F, 0.4F, 1.0F, 0.3F); }},
      // gain, colour preservation, rho of HDR and of SDR, input scale, output scale
      {"ToneMapKernelITU2446A",
       {1.2F, 0.3F, 13.26171F, 7.098651F, 0.203F, 1.1F},
       [](float* p) { ToneMapBt2446A(p, 1.2F, 13.26171F, 7.098651F, 0.203F, 1.1F, 0.3F); }},
      // knee, gain, a, b, colour preservation, peak, destination's peak, weights
      {"ToneMapKernelCARToneCurve",
       {0.5F, 1.2F, 1.4F, 0.7F, 0.3F, 4.926F, 1.0F, kRed, kGreen, kBlue},
       [](float* p) {
         DesaturateHighlight(p, 1.2F, 0.5F, 4.926F, 0.3F, kRed, kGreen, kBlue);
         ToneMapCar(p, 0.5F, 1.4F, 0.7F, 1.0F);
       }},
      {"ToneMapKernelITU2390RGBByChannel", Bt2390Floats(),
       [](float* p) { ToneMapBt2390ByChannel(p, EetfParams1000To203()); }},
      {"ToneMapKernelITU2390MaxRGBMain", Bt2390Floats(),
       [](float* p) { ToneMapBt2390MaxRGB(p, EetfParams1000To203()); }},
  };
}

Pixels Mapped(Pixels pixels, const Kernel& kernel) {
  for (Pixel& pixel : pixels) kernel.curve(pixel.data());
  return pixels;
}

using KernelOnDevice = testing::TestWithParam<std::tuple<TestDevice, std::size_t>>;

class ToneMapMain : public KernelOnDevice {
 protected:
  void SetUp() override { ASSERT_NE(device_, nullptr); }

  /// The kernel's result on these pixels.
  Pixels Run(orvmediatypes::PixelFormat format, int width, int height, const Pixels& pixels,
             std::uint32_t blockX, std::uint32_t blockY) {
    const auto frame = OnGPU(device_, MakeSystemFrame(format, width, height, Space(9, 8), pixels));
    EXPECT_EQ(RunToneMapKernel(device_, kernel_.name, frame, kernel_.floats, blockX, blockY), 0);
    return PixelsOf(frame);
  }

  const Kernel kernel_ = AllKernels()[std::get<1>(GetParam())];
  const std::shared_ptr<RefHost::GPUDevice> device_ = std::get<0>(GetParam()).Open();
};

TEST_P(ToneMapMain, GivesFloatFramesTheBitsOfTheProcessor) {
  for (const auto& [width, height] :
       {std::pair{1, 1}, {2, 1}, {1, 3}, {7, 5}, {16, 16}, {17, 33}, {64, 2}, {70, 35}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const Pixels pixels = NotablePixels(width, height, 11U + static_cast<unsigned>(width));
    ExpectComputed(*device_, Run(RefHost::kBgraFloat, width, height, pixels, 1, 1),
                   Mapped(pixels, kernel_));
  }
}

TEST_P(ToneMapMain, GivesAWholeFrameTheBitsOfTheProcessor) {
  const Pixels pixels = NotablePixels(1920, 1080, 5);
  ExpectComputed(*device_, Run(RefHost::kBgraFloat, 1920, 1080, pixels, 1, 1),
                 Mapped(pixels, kernel_));
}

TEST_P(ToneMapMain, GivesHalfFramesTheFloatResultRoundedOnce) {
  const Pixels pixels = RoundedToHalf(NotablePixels(70, 35, 3));
  ExpectComputed(*device_, Run(RefHost::kBgraHalf, 70, 35, pixels, 1, 1),
                 RoundedToHalf(Mapped(pixels, kernel_)));
}

TEST_P(ToneMapMain, LeavesThreadsBeyondTheFrameWithoutAPixel) {
  const Pixels pixels = NotablePixels(19, 5, 8);
  ExpectComputed(*device_, Run(RefHost::kBgraFloat, 19, 5, pixels, 16, 16),
                 Mapped(pixels, kernel_));
  ExpectComputed(*device_, Run(RefHost::kBgraFloat, 19, 5, pixels, 64, 1), Mapped(pixels, kernel_));
}

TEST_P(ToneMapMain, LeavesWhatLiesBetweenRowsAsItWas) {
  // A frame of 3 pixels has rows of 16: as one of 16 it shows what lies between.
  const auto frame = OnGPU(
      device_, MakeSystemFrame(RefHost::kBgraFloat, 16, 4, Space(9, 8), NotablePixels(16, 4, 21)));
  const Pixels before = PixelsOf(frame);
  ASSERT_EQ(RunToneMapKernelOnPart(device_, kernel_.name, frame, 3, kernel_.floats), 0);
  const Pixels mapped = Mapped(before, kernel_);
  Pixels expected = before;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (i % 16 < 3) expected[i] = mapped[i];
  }
  ExpectComputed(*device_, PixelsOf(frame), expected);
}

INSTANTIATE_TEST_SUITE_P(EveryKernel, ToneMapMain,
                         testing::Combine(testing::ValuesIn(EveryDevice()),
                                          testing::Range(std::size_t{0}, AllKernels().size())),
                         [](const auto& info) {
                           return std::get<0>(info.param).TestName() + "_" +
                                  AllKernels()[std::get<1>(info.param)].name;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ToneMapMain);

}  // namespace
