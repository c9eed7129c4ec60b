// Kernels with more threads than pixels, on memory with a guard on all four sides of the frame.

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/ironlane/GPUFrameDescriptor.h"
#include "kernels/KernelModules.h"
#include "refhost/ironlane/opencl/OpenClDevices.h"
#include "refhost/ironlane/opencl/OpenClProgram.h"
#include "tests/devices/EveryDevice.h"

namespace {

struct Kernel {
  std::string name;
  std::vector<float> floats;
};

std::vector<Kernel> AllKernels() {
  const std::vector<float> bt2390 = {0.0F,   0.751827F, 0.0F,    0.5806889F, 1.2F,   0.4F,
                                     4.926F, 203.0F,    0.2627F, 0.6780F,    0.0593F};
  return {{"GamutCompressionKernelReinhard", {1.3F}},
          {"GamutCompressionKernelDesaturation", {0.2627F, 0.6780F, 0.0593F}},
          {"ToneMapKernelHuePreservationDesaturationMain", {4.926F, 1.0F, 0.4F, 1.2F, 0.3F}},
          {"ToneMapKernelITU2446A", {1.2F, 0.3F, 13.26171F, 7.098651F, 0.203F, 1.1F}},
          {"ToneMapKernelCARToneCurve",
           {0.5F, 1.2F, 1.4F, 0.7F, 0.3F, 4.926F, 1.0F, 0.2627F, 0.6780F, 0.0593F}},
          {"ToneMapKernelITU2390RGBByChannel", bt2390},
          {"ToneMapKernelITU2390MaxRGBMain", bt2390}};
}

using Pixel = std::array<float, 4>;
constexpr Pixel kInside = {-0.1F, 2.0F, 3.0F, 0.5F};
constexpr Pixel kGuard = {7.5F, 8.5F, 9.5F, 10.5F};

constexpr std::size_t kMostColumns = 33;
constexpr std::size_t kMostRows = 17;
/// Between rows; to the left of a row is what is to the right of the one above.
constexpr std::size_t kBand = 5;
/// Above and below all rows, in pixels: where a part of a buffer may begin on any device.
constexpr std::size_t kMargin = 256;

class GuardBands : public testing::TestWithParam<std::tuple<TestDevice, std::size_t>> {
 protected:
  void SetUp() override {
    if (std::get<0>(GetParam()).platformKind != IL::kPlatformOpenCl) {
      GTEST_SKIP() << "needs memory that begins within other memory, which OpenCL alone has here";
    }
    const auto ordinal = std::get<0>(GetParam()).ordinal;
    device_ = RefHost::FindOpenClDevices()[static_cast<std::size_t>(ordinal)];
    context_ = cl::Context(device_);
    queue_ = cl::CommandQueue(context_, device_);
    const auto program = RefHost::BuildOpenClProgram(
        context_, device_, RefHost::DescribeOpenClDevice(device_, ordinal),
        *kernels::FindKernelModule("ToneMapMain"), RefHost::BinaryCache());
    ASSERT_TRUE(program.has_value());
    run_ = cl::Kernel(*program, kernel_.name.c_str());
  }

  /// All pixels, with guards, after the kernel ran over a frame of this size.
  std::vector<Pixel> Run(std::size_t width, std::size_t height) {
    std::vector<Pixel> pixels(2 * kMargin + (width + kBand) * height, kGuard);
    for (std::size_t row = 0; row < height; ++row) {
      for (std::size_t column = 0; column < width; ++column) {
        pixels[kMargin + row * (width + kBand) + column] = kInside;
      }
    }
    const cl::Buffer all(queue_, pixels.begin(), pixels.end(), false);
    const cl_buffer_region region = {kMargin * sizeof(Pixel),
                                     (pixels.size() - kMargin) * sizeof(Pixel)};
    cl::Buffer whole = all;
    const cl::Buffer frame =
        whole.createSubBuffer(CL_MEM_READ_WRITE, CL_BUFFER_CREATE_TYPE_REGION, &region);
    Launch(frame, static_cast<cl_uint>(width), static_cast<cl_uint>(height));
    EXPECT_EQ(cl::copy(queue_, all, pixels.begin(), pixels.end()), CL_SUCCESS);
    return pixels;
  }

 private:
  void Launch(const cl::Buffer& frame, cl_uint width, cl_uint height) {
    constexpr cl_uint kFloats = 1;
    const cl_uint pitch = width + kBand;
    const Quillon::GPUFrameDescriptor descriptor = {.devicePointer = 0,
                                                    .width = width,
                                                    .height = height,
                                                    .rowPitchPixels = pitch,
                                                    .formatFlag = kFloats,
                                                    .reserved = 0,
                                                    .padding = 0};
    const cl_ulong size = width | cl_ulong{height} << 32U;
    cl_uint index = 0;
    run_.setArg(index++, frame);
    run_.setArg(index++, sizeof(descriptor), &descriptor);
    run_.setArg(index++, sizeof(cl_mem), nullptr);
    run_.setArg(index++, pitch);
    run_.setArg(index++, kFloats);
    run_.setArg(index++, size);
    for (const float value : kernel_.floats) run_.setArg(index++, value);
    constexpr std::size_t kGroup = 8;
    const auto groups = [](std::size_t items) { return (items / kGroup + 1) * kGroup; };
    ASSERT_EQ(
        queue_.enqueueNDRangeKernel(run_, cl::NullRange, cl::NDRange(groups(width), groups(height)),
                                    cl::NDRange(kGroup, kGroup)),
        CL_SUCCESS);
  }

  const Kernel kernel_ = AllKernels()[std::get<1>(GetParam())];
  cl::Device device_;
  cl::Context context_;
  cl::CommandQueue queue_;
  cl::Kernel run_;
};

TEST_P(GuardBands, KeepTheirBytesAroundFramesOfEverySize) {
  const Pixel mapped = Run(1, 1)[kMargin];
  ASSERT_NE(mapped, kInside);
  for (std::size_t height = 1; height <= kMostRows; ++height) {
    for (std::size_t width = 1; width <= kMostColumns; ++width) {
      const std::vector<Pixel> pixels = Run(width, height);
      for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::size_t place = i - kMargin;
        const bool isInside =
            i >= kMargin && place / (width + kBand) < height && place % (width + kBand) < width;
        ASSERT_EQ(pixels[i], isInside ? mapped : kGuard)
            << width << " x " << height << ", place " << place;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryKernel, GuardBands,
                         testing::Combine(testing::ValuesIn(EveryDevice()),
                                          testing::Range(std::size_t{0}, AllKernels().size())),
                         [](const auto& info) {
                           return std::get<0>(info.param).TestName() + "_" +
                                  AllKernels()[std::get<1>(info.param)].name;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GuardBands);

}  // namespace
