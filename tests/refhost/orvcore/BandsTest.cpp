#include <atomic>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "refhost/orvcore/Bands.h"

namespace {

using RefHost::RunInBands;

TEST(RunInBands, DoesEveryRowOnce) {
  for (const int rows : {1, 31, 32, 33, 64, 1000}) {
    std::vector<std::atomic<int>> done(static_cast<std::size_t>(rows));
    RunInBands(rows, 32, [&](int first, int last) {
      EXPECT_EQ(first % 32, 0);
      EXPECT_LE(last - first, 32);
      for (int row = first; row < last; ++row) ++done[static_cast<std::size_t>(row)];
    });
    for (const auto& count : done) EXPECT_EQ(count, 1) << rows;
  }
}

TEST(RunInBands, DoesNothingWithoutRows) {
  RunInBands(0, 32, [](int, int) { FAIL(); });
  RunInBands(-1, 32, [](int, int) { FAIL(); });
}

TEST(RunInBands, RaisesWhatABandThrew) {
  for (const int rows : {1, 100}) {
    EXPECT_THROW(RunInBands(rows, 32, [](int, int) { throw std::runtime_error("band"); }),
                 std::runtime_error);
  }
}

}  // namespace
