#include <array>
#include <cfenv>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "base/DefaultFloatingPoint.h"

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace {

constexpr std::array<int, 4> kRoundings = {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO};

/// A third, as the mode of now rounds it.
float Third() {
  const volatile float one = 1.0F;
  const volatile float three = 3.0F;
  const volatile float third = one / three;
  return third;
}

class DefaultFloatingPoint : public testing::Test {
 protected:
  ~DefaultFloatingPoint() override { std::fesetenv(&before_); }

 private:
  std::fenv_t before_ = [] {
    std::fenv_t mode;
    std::fegetenv(&mode);
    return mode;
  }();
};

TEST_F(DefaultFloatingPoint, RoundsToNearestAndGivesTheCallersRoundingBack) {
  const float nearest = Third();
  for (const int rounding : kRoundings) {
    std::fesetround(rounding);
    const float callers = Third();
    {
      const Quillon::DefaultFloatingPoint mode;
      EXPECT_EQ(Third(), nearest);
    }
    EXPECT_EQ(std::fegetround(), rounding);
    EXPECT_EQ(Third(), callers);
  }
}

TEST_F(DefaultFloatingPoint, GivesTheCallersModeBackWhenAnExceptionEndsIt) {
  std::fesetround(FE_UPWARD);
  try {
    const Quillon::DefaultFloatingPoint mode;
    throw std::runtime_error("host");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
  }
}

#if defined(__SSE2__)
TEST_F(DefaultFloatingPoint, KeepsSubnormalsWhereTheCallerFlushesThem) {
  const volatile float subnormal = 0x1p-140F;
  constexpr unsigned kFlushToZero = 0x8000;
  constexpr unsigned kDenormalsAreZero = 0x0040;
  for (const unsigned flags : {kFlushToZero, kDenormalsAreZero, kFlushToZero | kDenormalsAreZero}) {
    const unsigned callers = 0x1F80 | flags;
    _mm_setcsr(callers);
    {
      const Quillon::DefaultFloatingPoint mode;
      const volatile float half = subnormal * 0.5F;
      EXPECT_EQ(half, 0x1p-141F);
    }
    EXPECT_EQ(_mm_getcsr(), callers);
  }
}

TEST_F(DefaultFloatingPoint, NeitherTrapsNorLeavesFlagsBehind) {
  constexpr unsigned kTrapDivisions = 0x1D80;
  _mm_setcsr(kTrapDivisions);
  {
    const Quillon::DefaultFloatingPoint mode;
    const volatile float zero = 0.0F;
    const volatile float infinity = 1.0F / zero;
    EXPECT_GT(infinity, 1.0F);
  }
  EXPECT_EQ(_mm_getcsr(), kTrapDivisions);
}
#endif

}  // namespace
