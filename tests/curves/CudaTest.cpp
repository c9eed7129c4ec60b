// The curves as CUDA C++. They are compiled and their PTX is read; no device runs them.

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/curves/Ptx.h"

namespace {

using ::testing::IsEmpty;

std::vector<std::string> NamesOfKernels() {
  std::vector<std::string> names;
#define QUILLON_CURVE_CALL(name, Number, ins, outs) names.emplace_back("Run" #name);
#include "tests/curves/CurveCalls.inc"
  return names;
}

/// The PTX of Curves.cu, empty when the compiler refuses it; what it says is on standard error.
std::string CompileToPtx() {
  const std::string ptx = QUILLON_BINARY_DIR "/Curves.ptx";
  const std::string command = "'" QUILLON_NVCC
                              "' --ptx --std=c++20 --fmad=false --Werror all-warnings"
                              " -I '" QUILLON_SOURCE_DIR "' -o '" +
                              ptx + "' '" QUILLON_SOURCE_DIR "/tests/curves/Curves.cu'";
  if (std::system(command.c_str()) != 0) return {};
  std::ifstream file(ptx);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CurvesInCuda, CompileAndFuseNothingWhichNoDeviceRuns) {
  if (std::string(QUILLON_NVCC).empty()) GTEST_SKIP() << "needs nvcc, which CMake did not find";
  const std::string ptx = CompileToPtx();
  EXPECT_EQ(KernelsOf(ptx), NamesOfKernels());
  EXPECT_THAT(InexactLines(ptx), IsEmpty());
}

TEST(Ptx, IsInexactWhereItFusesApproximatesOrFlushes) {
  for (const char* line :
       {"\tfma.rn.f32 \t%f1, %f2, %f3, %f4;", "@%p1 fma.rn.f64 %fd1, %fd2, %fd3, %fd4;",
        "\tmad.f32 %f1, %f2, %f3, %f4;", "\tmad.rn.f64 %fd1, %fd2, %fd3, %fd4;",
        "\tdiv.full.f32 %f1, %f2, %f3;", "\tdiv.approx.f32 %f1, %f2, %f3;",
        "\tadd.rn.ftz.f32 %f1, %f2, %f3;", "\tsqrt.approx.f32 %f1, %f2;",
        "\tmul.f32 %f1, %f2, %f3;", "\tadd.f32 %f1, %f2, %f3;", "\tsub.f32 %f1, %f2, %f3;",
        "@!%p1 mul.f64 %fd1, %fd2, %fd3;", "\tadd.rz.f32 %f1, %f2, %f3;"}) {
    EXPECT_EQ(InexactLines(line).size(), 1U) << line;
  }
}

TEST(Ptx, IsExactInSingleOperationsAndInIntegers) {
  EXPECT_THAT(InexactLines("\tmul.rn.f32 %f1, %f2, %f3;\n"
                           "\tsub.rn.f64 %fd1, %fd2, %fd3;\n"
                           "\tdiv.rn.f64 %fd1, %fd2, %fd3;\n"
                           "\tadd.s32 %r1, %r2, %r3;\n"
                           "\tmul.wide.u32 %rd1, %r2, %r3;\n"
                           "\tsqrt.rn.f64 %fd1, %fd2;\n"
                           "\tmad.lo.s32 %r1, %r2, %r3, %r4;\n"),
              IsEmpty());
}

}  // namespace
