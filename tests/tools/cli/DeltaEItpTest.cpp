#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "tools/quillon/picture/DeltaEItp.h"

namespace {

TEST(DeltaEItp, OfGreysIsTheirDistanceInPq) {
  for (const double nits : {0.1, 1.0, 100.0, 1000.0}) {
    const ICtCp grey = ICtCpOfNits(nits, nits, nits);
    EXPECT_NEAR(grey.i, EncodeSt2084(nits), 1e-12);
    EXPECT_NEAR(grey.ct, 0.0, 1e-12);
    EXPECT_NEAR(grey.cp, 0.0, 1e-12);
    const ICtCp brighter = ICtCpOfNits(2.0 * nits, 2.0 * nits, 2.0 * nits);
    EXPECT_NEAR(DeltaEItp(grey, brighter), 720.0 * (EncodeSt2084(2.0 * nits) - EncodeSt2084(nits)),
                1e-9);
  }
}

TEST(DeltaEItp, CountsHalfOfTheBlueYellowAxis) {
  EXPECT_DOUBLE_EQ(DeltaEItp({0.5, 0.02, 0.0}, {0.5, 0.0, 0.0}), 7.2);
  EXPECT_DOUBLE_EQ(DeltaEItp({0.5, 0.0, 0.02}, {0.5, 0.0, 0.0}), 14.4);
  EXPECT_NEAR(DeltaEItp({0.4885468072, -0.04739350675, 0.07475401302},
                        {0.4899203231, -0.04567508203, 0.07361341775}),
              1.42657, 1e-5);
}

TEST(ICtCp, IsPositiveAlongItsAxesForBlueAndForRed) {
  const ICtCp red = ICtCpOfNits(100.0, 0.0, 0.0);
  const ICtCp blue = ICtCpOfNits(0.0, 0.0, 100.0);
  const ICtCp cyan = ICtCpOfNits(0.0, 100.0, 100.0);
  EXPECT_GT(red.cp, 0.0);
  EXPECT_LT(red.ct, 0.0);
  EXPECT_GT(blue.ct, 0.0);
  EXPECT_LT(cyan.cp, 0.0);
}

}  // namespace
