// Tests that end in every way, for ReportTest.sh.

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

TEST(Ends, Passes) {}
TEST(Ends, Fails) { FAIL(); }
TEST(Ends, Skips) { GTEST_SKIP(); }
TEST(Ends, DISABLED_IsOff) {}

TEST(Crash, Before) {}
TEST(Crash, Within) { std::abort(); }
TEST(Crash, After) {}

TEST(Leaves, Within) { std::exit(0); }

class TornDown : public testing::Test {
 protected:
  static void TearDownTestSuite() { ADD_FAILURE(); }
};
TEST_F(TornDown, Passes) {}

class Instances : public testing::TestWithParam<int> {};
TEST_P(Instances, Pass) {}
INSTANTIATE_TEST_SUITE_P(Two, Instances, testing::Values(1, 2));

}  // namespace
