#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "refhost/chromant/rows/ConvertRows.h"

namespace {

using RefHost::InstructionSet;

constexpr std::size_t kMost = 70;  // several vectors of the widest kind, and some pixels
constexpr float kUntouched = -7.0F;

class PlaneRowsBy : public ::testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!RefHost::CanRun(GetParam())) GTEST_SKIP() << "this machine cannot run them";
  }

  RefHost::RowFunctions Rows() const { return RefHost::RowFunctionsOf(GetParam()); }
};

TEST_P(PlaneRowsBy, SplitAnyNumberOfPixelsAndNoneBeyond) {
  std::vector<float> pixels(4 * kMost);
  std::iota(pixels.begin(), pixels.end(), 0.0F);
  for (std::size_t count = 0; count <= kMost; ++count) {
    std::vector<float> red(kMost + 1, kUntouched);
    std::vector<float> green = red;
    std::vector<float> blue = red;
    Rows().split(pixels.data(), count, red.data(), green.data(), blue.data());
    for (std::size_t i = 0; i <= kMost; ++i) {
      const auto first = static_cast<float>(4 * i);
      ASSERT_EQ(blue[i], i < count ? first : kUntouched) << i << " of " << count;
      ASSERT_EQ(green[i], i < count ? first + 1.0F : kUntouched) << i << " of " << count;
      ASSERT_EQ(red[i], i < count ? first + 2.0F : kUntouched) << i << " of " << count;
    }
  }
}

TEST_P(PlaneRowsBy, JoinAnyNumberOfPixelsAndNoneBeyond) {
  std::vector<float> red(kMost);
  std::iota(red.begin(), red.end(), 1000.0F);
  std::vector<float> green(kMost);
  std::iota(green.begin(), green.end(), 2000.0F);
  std::vector<float> blue(kMost);
  std::iota(blue.begin(), blue.end(), 3000.0F);
  for (std::size_t count = 0; count <= kMost; ++count) {
    std::vector<float> pixels(4 * (kMost + 1), kUntouched);
    Rows().join(red.data(), green.data(), blue.data(), count, pixels.data());
    for (std::size_t i = 0; i <= kMost; ++i) {
      const std::vector<float> pixel(&pixels[4 * i], &pixels[4 * i] + 4);
      const std::vector<float> expected = i < count
                                              ? std::vector<float>{blue[i], green[i], red[i], 1.0F}
                                              : std::vector<float>(4, kUntouched);
      ASSERT_EQ(pixel, expected) << i << " of " << count;
    }
  }
}

TEST_P(PlaneRowsBy, BoundNumbersAndMakeTheRestBlack) {
  using Limits = std::numeric_limits<float>;
  const std::vector<float> values = {0.0F,    -0.0F,          5.0F,
                                     5.5F,    -5.0F,          -5.5F,
                                     0.25F,   Limits::max(),  Limits::infinity(),
                                     -0.25F,  -Limits::max(), -Limits::infinity(),
                                     1e-40F,  4.9F,           Limits::quiet_NaN(),
                                     -1e-40F, -4.9F};
  const std::vector<float> bounded = {0.0F,   -0.0F, 5.0F, 5.0F,    -5.0F, -5.0F,
                                      0.25F,  5.0F,  5.0F, -0.25F,  -5.0F, -5.0F,
                                      1e-40F, 4.9F,  0.0F, -1e-40F, -4.9F};
  for (std::size_t count = 0; count <= kMost; ++count) {
    std::vector<float> samples;
    for (std::size_t i = 0; i <= kMost; ++i) samples.push_back(values[i % values.size()]);
    Rows().bound(samples.data(), count, 5.0F);
    for (std::size_t i = 0; i <= kMost; ++i) {
      const float expected = (i < count ? bounded : values)[i % values.size()];
      ASSERT_EQ(std::bit_cast<std::uint32_t>(samples[i]), std::bit_cast<std::uint32_t>(expected))
          << i << " of " << count;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, PlaneRowsBy,
                         ::testing::Values(InstructionSet::Baseline, InstructionSet::Avx2,
                                           InstructionSet::Avx512));

}  // namespace
