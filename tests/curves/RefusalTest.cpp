// What the curves may not be compiled with, the compiler that built this test refuses.

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace {

bool Compiles(const std::string& options) {
  const std::string command = "'" QUILLON_CXX "' -std=c++20 -fsyntax-only " + options +
                              " -I '" QUILLON_SOURCE_DIR "' -x c++ '" QUILLON_SOURCE_DIR
                              "/curves/math.h' > '" QUILLON_BINARY_DIR "/refusal.txt' 2>&1";
  return std::system(command.c_str()) == 0;
}

/// What the header has in a main file of its own, and nothing else, is no warning of ours.
TEST(CurveCompilation, IsThereAsItIsBuilt) {
  EXPECT_TRUE(Compiles("-ffp-contract=off"));
  EXPECT_TRUE(Compiles("-O3 -ffp-contract=off -DQUILLON_CONTRACTION_OFF"));
}

TEST(CurveCompilation, IsRefusedUnderFastMath) {
  for (const char* options : {"-ffast-math", "-Ofast", "-ffinite-math-only",
                              "-fno-signed-zeros -fno-trapping-math -fassociative-math",
                              "-freciprocal-math", "-fno-signed-zeros"}) {
    EXPECT_FALSE(Compiles(std::string("-O2 -DQUILLON_CONTRACTION_OFF ") + options)) << options;
  }
}

#if defined(__x86_64__)
TEST(CurveCompilation, IsRefusedWhereProductsMayBeFusedUnlessThatIsTurnedOff) {
  EXPECT_FALSE(Compiles("-mfma"));
  EXPECT_FALSE(Compiles("-mavx512f"));
  EXPECT_TRUE(Compiles("-mfma -ffp-contract=off -DQUILLON_CONTRACTION_OFF"));
}

TEST(CurveCompilation, IsRefusedWhereFloatsAreEvaluatedInWiderRegisters) {
  EXPECT_FALSE(Compiles("-mfpmath=387 -DQUILLON_CONTRACTION_OFF"));
}
#endif

}  // namespace
