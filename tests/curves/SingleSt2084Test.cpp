#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "curves/SingleSt2084.h"
#include "curves/St2084.h"

namespace {

constexpr double kMostNits = 10000.0;

/// Calls `use` with floats from `from` to `to`, every so many of them.
template <class Use>
void ForFloats(float from, float to, const Use& use) {
  constexpr std::uint32_t kStep = 1009;
  const auto last = std::bit_cast<std::uint32_t>(to);
  for (auto bits = std::bit_cast<std::uint32_t>(from); bits <= last; bits += kStep) {
    use(std::bit_cast<float>(bits));
  }
}

TEST(SingleSt2084, EncodesWithinTwoMillionthsOfTheSignal) {
  ForFloats(0x1p-40F, 1.0F, [](float light) {
    const double exact = EncodeSt2084(light * kMostNits);
    ASSERT_NEAR(EncodeSingleSt2084(light), exact, 2e-6) << light;
  });
}

TEST(SingleSt2084, DecodesWithinFourMillionthsOfTheLight) {
  ForFloats(0x1p-5F, 1.0F, [](float signal) {
    const double exact = DecodeSt2084(signal) / kMostNits;
    ASSERT_NEAR(DecodeSingleSt2084(signal), exact, 4e-6 * exact) << signal;
  });
}

TEST(SingleSt2084, KeepsBlackAndWhite) {
  EXPECT_EQ(EncodeSingleSt2084(0.0F), 0.0F);
  EXPECT_EQ(EncodeSingleSt2084(-1.0F), 0.0F);
  EXPECT_EQ(EncodeSingleSt2084(1.0F), 1.0F);
  EXPECT_EQ(DecodeSingleSt2084(0.0F), 0.0F);
  EXPECT_EQ(DecodeSingleSt2084(-1.0F), 0.0F);
  EXPECT_EQ(DecodeSingleSt2084(1.0F), 1.0F);
}

TEST(SingleSt2084, NeverFallsWhereLightRises) {
  float last = 0.0F;
  ForFloats(0x1p-40F, 1.0F, [&](float light) {
    const float signal = EncodeSingleSt2084(light);
    ASSERT_GE(signal, last) << light;
    last = signal;
  });
}

}  // namespace
