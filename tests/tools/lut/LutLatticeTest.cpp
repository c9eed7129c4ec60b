#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "tools/quillon/lut/LutLattice.h"

using namespace Quillon::Cli;

namespace {

LutLattice LatticeOf(int size, Signal (*function)(const Signal&)) {
  LutLattice lattice{size, {}};
  for (const Signal& signal : LatticeSignals(size)) lattice.results.push_back(function(signal));
  return lattice;
}

Signal Product(const Signal& s) { return {s[0] * s[1], s[1] * s[2], s[0] * s[1] * s[2]}; }

Signal Mixture(const Signal& s) {
  return {0.5F * s[0] + 0.25F * s[1], s[1] - 0.5F * s[2] + 0.5F, 0.125F + 0.75F * s[0]};
}

using Interpolate = Signal (*)(const LutLattice&, const Signal&);

TEST(LutLattice, HoldsItsSignalsWithRedFastest) {
  const auto signals = LatticeSignals(3);
  ASSERT_EQ(signals.size(), 27U);
  EXPECT_EQ(signals[1], (Signal{0.5F, 0.0F, 0.0F}));
  EXPECT_EQ(signals[3], (Signal{0.0F, 0.5F, 0.0F}));
  EXPECT_EQ(signals[9], (Signal{0.0F, 0.0F, 0.5F}));
  EXPECT_EQ(signals[26], (Signal{1.0F, 1.0F, 1.0F}));
}

TEST(LutLattice, GivesBackItsResultsAtItsSignals) {
  const LutLattice lattice = LatticeOf(5, Product);
  for (const Interpolate interpolate : {InterpolateTrilinear, InterpolateTetrahedral}) {
    for (const Signal& signal : LatticeSignals(5)) {
      EXPECT_EQ(interpolate(lattice, signal), Product(signal));
    }
  }
}

TEST(LutLattice, InterpolatesWhatIsLinearWithoutError) {
  const LutLattice lattice = LatticeOf(4, Mixture);
  for (const Interpolate interpolate : {InterpolateTrilinear, InterpolateTetrahedral}) {
    for (const Signal& signal : SignalsOffLattice(4)) {
      const Signal found = interpolate(lattice, signal);
      for (int c = 0; c < 3; ++c) ASSERT_NEAR(found[c], Mixture(signal)[c], 2e-7);
    }
  }
}

TEST(LutLattice, TakesEightCornersOfACellOrFour) {
  const LutLattice lattice = LatticeOf(2, Product);
  const Signal signal = {0.75F, 0.5F, 0.25F};
  // A product of components is linear along each axis.
  EXPECT_EQ(InterpolateTrilinear(lattice, signal), Product(signal));
  // From 0 by red to 1, 0, 0, by green to 1, 1, 0, by blue to 1, 1, 1: the smallest component.
  EXPECT_EQ(InterpolateTetrahedral(lattice, signal), (Signal{0.5F, 0.25F, 0.25F}));
}

TEST(LutLattice, IsTriedAtSignalsBetweenItsOwnAllOverTheCube) {
  const auto signals = SignalsOffLattice(17);
  EXPECT_EQ(signals.size(), 16U * 16U * 16U + (1U << 18U));
  std::array<int, 64> inPart{};
  for (std::size_t i = 16 * 16 * 16; i < signals.size(); ++i) {
    std::size_t part = 0;
    for (const float component : signals[i]) {
      ASSERT_TRUE(component >= 0.0F && component <= 1.0F);
      part = part * 4 + std::min<std::size_t>(3, static_cast<std::size_t>(component * 4.0F));
    }
    ++inPart[part];
  }
  for (const int count : inPart) EXPECT_NEAR(count, 1 << 12, 64);
  for (std::size_t i = 0; i < 16 * 16 * 16; ++i) {
    for (const float component : signals[i]) {
      const float steps = component * 16.0F;
      ASSERT_FLOAT_EQ(steps - std::floor(steps), 0.5F);
    }
  }
}

}  // namespace
