#include <cmath>

#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "tools/quillon/picture/DeltaEItp.h"

using namespace Quillon::Cli;

namespace {

constexpr double kTolerance = 1e-11;  // the engine's powers are good to about 1e-12

/// SMPTE ST 2084 written out with the fractions of ITU-R BT.2100-2, table 4.
long double PQ(long double nits) {
  const long double m1 = 2610.0L / 16384.0L;
  const long double m2 = 2523.0L / 4096.0L * 128.0L;
  const long double c1 = 3424.0L / 4096.0L;
  const long double c2 = 2413.0L / 4096.0L * 32.0L;
  const long double c3 = 2392.0L / 4096.0L * 32.0L;
  const long double y = std::pow(nits / 10000.0L, m1);
  return std::pow((c1 + c2 * y) / (1.0L + c3 * y), m2);
}

TEST(ICtCpOfNits, AgreesWithTheFormulasWrittenOutForPureRed) {
  for (const long double nits : {10000.0L, 100.0L, 0.5L}) {
    const long double l = PQ(nits * 1688.0L / 4096.0L);
    const long double m = PQ(nits * 683.0L / 4096.0L);
    const long double s = PQ(nits * 99.0L / 4096.0L);
    const ICtCp red = ICtCpOfNits(static_cast<double>(nits), 0.0, 0.0);
    EXPECT_NEAR(red.i, static_cast<double>((l + m) / 2.0L), kTolerance);
    EXPECT_NEAR(red.ct, static_cast<double>((6610.0L * l - 13613.0L * m + 7003.0L * s) / 4096.0L),
                kTolerance);
    EXPECT_NEAR(red.cp, static_cast<double>((17933.0L * l - 17390.0L * m - 543.0L * s) / 4096.0L),
                kTolerance);
  }
}

TEST(ICtCpOfNits, WeighsEachPrimaryAsTheStandardDoes) {
  // Columns of the matrix to L, M and S, in 4096ths.
  const double columns[3][3] = {{1688, 683, 99}, {2146, 2951, 309}, {262, 462, 3688}};
  for (int primary = 0; primary < 3; ++primary) {
    const long double l = PQ(1000.0L * columns[primary][0] / 4096.0L);
    const long double m = PQ(1000.0L * columns[primary][1] / 4096.0L);
    const ICtCp color = ICtCpOfNits(primary == 0 ? 1000.0 : 0.0, primary == 1 ? 1000.0 : 0.0,
                                    primary == 2 ? 1000.0 : 0.0);
    EXPECT_NEAR(color.i, static_cast<double>((l + m) / 2.0L), kTolerance) << primary;
  }
}

TEST(ICtCpOfNits, GivesGreysTheirPQSignalAndNoColour) {
  for (const double nits : {0.01, 1.0, 26.0, 203.0, 1000.0, 10000.0}) {
    const ICtCp grey = ICtCpOfNits(nits, nits, nits);
    EXPECT_NEAR(grey.i, static_cast<double>(PQ(nits)), kTolerance);
    EXPECT_NEAR(grey.ct, 0.0, kTolerance);
    EXPECT_NEAR(grey.cp, 0.0, kTolerance);
  }
  EXPECT_EQ(ICtCpOfNits(0.0, 0.0, 0.0).i, 0.0);
}

TEST(ICtCpOfNits, TakesComponentsBelowZeroForZero) {
  const ICtCp clamped = ICtCpOfNits(100.0, 0.0, 50.0);
  const ICtCp negative = ICtCpOfNits(100.0, -30.0, 50.0);
  EXPECT_EQ(negative.i, clamped.i);
  EXPECT_EQ(negative.ct, clamped.ct);
  EXPECT_EQ(negative.cp, clamped.cp);
}

TEST(DeltaEItp, Is720TimesTheDifferenceOfPQSignalsBetweenGreys) {
  const double expected = 720.0 * static_cast<double>(PQ(203.0L) - PQ(100.0L));
  EXPECT_NEAR(DeltaEItp(ICtCpOfNits(203.0, 203.0, 203.0), ICtCpOfNits(100.0, 100.0, 100.0)),
              expected, 1e-9);
}

TEST(DeltaEItp, CountsHalfOfCtAndAllOfCp) {
  const ICtCp origin{0.5, 0.0, 0.0};
  EXPECT_DOUBLE_EQ(DeltaEItp(origin, {0.5, 0.25, 0.0}), 90.0);
  EXPECT_DOUBLE_EQ(DeltaEItp(origin, {0.5, 0.0, -0.25}), 180.0);
  EXPECT_DOUBLE_EQ(DeltaEItp(origin, {0.75, 0.0, 0.0}), 180.0);
  EXPECT_NEAR(DeltaEItp(origin, {0.75, 0.5, 0.25}), 720.0 * std::sqrt(0.1875), kTolerance);
}

TEST(DeltaEItp, IsTheSameBothWaysAndZeroForOneColour) {
  const ICtCp one = ICtCpOfNits(800.0, 20.0, 3.0);
  const ICtCp other = ICtCpOfNits(750.0, 25.0, 90.0);
  EXPECT_EQ(DeltaEItp(one, other), DeltaEItp(other, one));
  EXPECT_GT(DeltaEItp(one, other), 1.0);
  EXPECT_EQ(DeltaEItp(one, one), 0.0);
}

TEST(DeltaEItp, OfGreysIsTheirDistanceInPQ) {
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
