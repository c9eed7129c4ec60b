#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kernels/KernelModules.h"
#include "tests/curves/Ptx.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr const char* kNoPtx = "needs nvcc or clang++, which CMake did not find";

std::string OpenClOf(const char* module) {
  return std::string(kernels::FindKernelModule(module)->openCl);
}

TEST(KernelModules, AreFoundByName) {
  ASSERT_NE(kernels::FindKernelModule("ToneMapMain"), nullptr);
  EXPECT_EQ(kernels::FindKernelModule("ToneMapMain")->name, "ToneMapMain");
  ASSERT_NE(kernels::FindKernelModule("PixelConversion"), nullptr);
  EXPECT_EQ(kernels::FindKernelModule("ToneMap"), nullptr);
  EXPECT_EQ(kernels::FindKernelModule(""), nullptr);
}

TEST(KernelModules, NeedNoOtherTextInOpenCl) {
  for (const char* module : {"ToneMapMain", "PixelConversion", "GamutFit"}) {
    EXPECT_THAT(OpenClOf(module), Not(HasSubstr("#include \"")));
    EXPECT_THAT(OpenClOf(module), HasSubstr("#pragma OPENCL FP_CONTRACT OFF"));
  }
}

TEST(KernelModules, ReadTheFrameDescriptorInTheHostsOwnText) {
  std::ifstream file(QUILLON_SOURCE_DIR "/host/ironlane/GPUFrameDescriptor.h");
  const std::string header{std::istreambuf_iterator<char>(file), {}};
  const auto first = header.find("typedef struct GPUFrameDescriptor {");
  const auto last = header.find("} GPUFrameDescriptor;");
  ASSERT_LT(first, last);
  for (const char* module : {"ToneMapMain", "PixelConversion", "GamutFit"}) {
    EXPECT_THAT(OpenClOf(module), HasSubstr(header.substr(first, last - first)));
  }
}

TEST(KernelModules, HoldEachHeaderOnce) {
  const std::string text = OpenClOf("ToneMapMain");
  const std::string once = "Real LargestOfThree(";
  const auto first = text.find(once);
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(text.find(once, first + 1), std::string::npos);
}

/// The PTX of a module, newest first.
std::vector<std::string> PtxOf(const char* module) {
  const auto texts = kernels::FindKernelModule(module)->ptx;
  return {texts.begin(), texts.end()};
}

TEST(KernelModules, HaveTheSameKernelsInPtxWithNothingFusedOrFlushed) {
  if (PtxOf("ToneMapMain").empty()) GTEST_SKIP() << kNoPtx;
  for (const std::string& ptx : PtxOf("ToneMapMain")) {
    EXPECT_THAT(
        KernelsOf(ptx),
        UnorderedElementsAre("GamutCompressionKernelReinhard", "GamutCompressionKernelDesaturation",
                             "ToneMapKernelHuePreservationDesaturationMain",
                             "ToneMapKernelITU2446A", "ToneMapKernelCARToneCurve",
                             "ToneMapKernelITU2390RGBByChannel", "ToneMapKernelITU2390MaxRGBMain"));
    EXPECT_THAT(InexactLines(ptx), IsEmpty());
  }
  for (const std::string& ptx : PtxOf("PixelConversion")) {
    EXPECT_THAT(KernelsOf(ptx), UnorderedElementsAre("ConvertPixels"));
    EXPECT_THAT(InexactLines(ptx), IsEmpty());
  }
  for (const std::string& ptx : PtxOf("GamutFit")) {
    EXPECT_THAT(KernelsOf(ptx), UnorderedElementsAre("FitPixels"));
    EXPECT_THAT(InexactLines(ptx), IsEmpty());
  }
}

TEST(KernelModules, HavePtxForOldDriversAndDevicesBehindThatForNewOnes) {
  if (std::string(QUILLON_CLANG_CUDA).empty()) GTEST_SKIP() << "needs clang++";
  for (const char* module : {"ToneMapMain", "PixelConversion", "GamutFit"}) {
    const auto texts = PtxOf(module);
    ASSERT_THAT(texts, SizeIs(std::string(QUILLON_NVCC).empty() ? 1 : 2));
    EXPECT_THAT(texts.back(), HasSubstr("\n.version 7.0\n.target sm_60\n"));
    if (texts.size() == 1) continue;
    EXPECT_THAT(texts.front(), Not(HasSubstr("\n.version 7")));
  }
}

TEST(KernelModules, AssembleForDevicesOfSeveralGenerations) {
  const std::filesystem::path assembler =
      std::filesystem::path(QUILLON_NVCC).parent_path() / "ptxas";
  if (!std::filesystem::exists(assembler)) GTEST_SKIP() << "needs ptxas, which comes with nvcc";
  const std::string file = testing::TempDir() + "quillon-kernels.ptx";
  for (const char* module : {"ToneMapMain", "PixelConversion", "GamutFit"}) {
    for (const std::string& ptx : PtxOf(module)) {
      std::ofstream(file) << ptx;
      for (const char* device : {"sm_75", "sm_90", "sm_120"}) {
        const std::string command = "'" + assembler.string() + "' -arch=" + device + " -o '" +
                                    file + ".bin' '" + file + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << module << ' ' << ptx.substr(0, 200);
      }
    }
  }
  std::filesystem::remove(file);
  std::filesystem::remove(file + ".bin");
}

}  // namespace
