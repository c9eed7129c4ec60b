#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kernels/KernelModules.h"
#include "tests/curves/Ptx.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

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
  for (const char* module : {"ToneMapMain", "PixelConversion"}) {
    EXPECT_THAT(OpenClOf(module), Not(HasSubstr("#include \"")));
    EXPECT_THAT(OpenClOf(module), HasSubstr("#pragma OPENCL FP_CONTRACT OFF"));
  }
}

TEST(KernelModules, HoldEachHeaderOnce) {
  const std::string text = OpenClOf("ToneMapMain");
  const std::string once = "Real LargestOfThree(";
  const auto first = text.find(once);
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(text.find(once, first + 1), std::string::npos);
}

TEST(KernelModules, HaveTheSameKernelsInPtxWithNothingFusedOrFlushed) {
  const std::string toneMap(kernels::FindKernelModule("ToneMapMain")->ptx);
  const std::string conversion(kernels::FindKernelModule("PixelConversion")->ptx);
  if (toneMap.empty()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  EXPECT_THAT(
      KernelsOf(toneMap),
      UnorderedElementsAre("GamutCompressionKernelReinhard", "GamutCompressionKernelDesaturation",
                           "ToneMapKernelHuePreservationDesaturationMain", "ToneMapKernelITU2446A",
                           "ToneMapKernelCARToneCurve", "ToneMapKernelITU2390RGBByChannel",
                           "ToneMapKernelITU2390MaxRGBMain"));
  EXPECT_THAT(KernelsOf(conversion), UnorderedElementsAre("ConvertPixels"));
  EXPECT_THAT(InexactLines(toneMap), IsEmpty());
  EXPECT_THAT(InexactLines(conversion), IsEmpty());
}

}  // namespace
