#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/quillon/plot/NitsAxis.h"

using namespace Quillon::Cli;

namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;

TEST(NitsAxis, SpacesDecadesEquallyOnALogAxis) {
  const NitsAxis axis(NitsAxis::Scale::Log, 0.01, 10000.0);
  EXPECT_DOUBLE_EQ(axis.Share(0.01), 0.0);
  EXPECT_DOUBLE_EQ(axis.Share(10.0), 0.5);
  EXPECT_DOUBLE_EQ(axis.Share(10000.0), 1.0);
  EXPECT_EQ(axis.Decades().size(), 7U);
}

TEST(NitsAxis, KeepsBlackWithinReachOfALogAxis) {
  const NitsAxis axis(NitsAxis::Scale::Log, 0.01, 10000.0);
  for (const double dark : {0.0, -1.0, 1e-300, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(axis.Share(dark), -1.0);
  }
}

TEST(NitsAxis, SpacesCodeValuesEquallyOnAPQAxis) {
  const NitsAxis axis(NitsAxis::Scale::PQ, 0.0, 10000.0);
  EXPECT_DOUBLE_EQ(axis.Share(0.0), 0.0);
  EXPECT_NEAR(axis.Share(100.0), 0.508078, 1e-6);  // ITU-R BT.2408
  EXPECT_NEAR(axis.Share(10000.0), 1.0, 1e-12);
}

TEST(NitsAxis, NamesTheDecadesFromATenthOfANitOnAPQAxis) {
  const auto is = [](double nits) { return DoubleNear(nits, nits * 1e-12); };
  EXPECT_THAT(NitsAxis(NitsAxis::Scale::PQ, 0.0, 16000.0).Decades(),
              ElementsAre(is(0.1), is(1), is(10), is(100), is(1000), is(10000)));
}

TEST(NitsAxis, EndsWithADecadeThatRoundingPutsAtItsEnd) {
  EXPECT_EQ(NitsAxis(NitsAxis::Scale::PQ, 0.0, 9999.9999).Decades().size(), 6U);
}

TEST(FormatNits, WritesWholeAndBrokenNumbersShortly) {
  EXPECT_EQ(FormatNits(203.0), "203");
  EXPECT_EQ(FormatNits(101.49999), "101.5");
  EXPECT_EQ(FormatNits(0.01), "0.01");
  EXPECT_EQ(FormatNits(10000.0), "10000");
  EXPECT_EQ(FormatNits(1000000.0), "1000000");
  EXPECT_EQ(FormatNits(0.0), "0");
}

}  // namespace
