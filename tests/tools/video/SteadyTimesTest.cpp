#include <vector>

#include <gtest/gtest.h>

#include "tools/quillon/video/SteadyTimes.h"

using namespace Quillon::Cli;

namespace {

std::int64_t MissingAmong(SteadyTimes& times, const std::vector<double>& seconds) {
  std::int64_t missing = 0;
  for (const double second : seconds) missing += times.MissingBefore(second);
  return missing;
}

std::vector<double> Frames(const std::vector<int>& numbers) {
  std::vector<double> seconds;
  for (const int number : numbers) seconds.push_back(7.0 + number / 24.0);
  return seconds;
}

}  // namespace

TEST(SteadyTimes, TellOfEachFrameThatIsMissing) {
  SteadyTimes whole(24.0);
  EXPECT_EQ(MissingAmong(whole, Frames({0, 1, 2, 3, 4, 5, 6})), 0);
  SteadyTimes late(24.0);
  EXPECT_EQ(MissingAmong(late, Frames({0, 1, 2, 3, 5, 6, 9})), 3);
  SteadyTimes early(24.0);
  EXPECT_EQ(MissingAmong(early, Frames({0, 2, 3, 4, 5, 6})), 1);
}

TEST(SteadyTimes, TakeTimesThatAreRounded) {
  SteadyTimes times(23.976);
  EXPECT_EQ(MissingAmong(times, {0.0, 0.042, 0.083, 0.125, 0.167, 0.209, 0.25}), 0);
}

TEST(SteadyTimes, SayNothingOfAClipWhoseTimesVary) {
  SteadyTimes times(24.0);
  EXPECT_EQ(MissingAmong(times, {0.0, 0.06, 0.1, 0.2, 0.3, 0.5, 0.9, 1.7}), 0);
  SteadyTimes unknown(0.0);
  EXPECT_EQ(MissingAmong(unknown, Frames({0, 1, 2, 3, 9, 10})), 0);
}
