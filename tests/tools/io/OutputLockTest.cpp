#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/OutputLock.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class OutputLockTest : public testing::Test {
 protected:
  std::unique_ptr<OutputLock> Lock(std::int64_t first = 0, std::int64_t last = -1) const {
    return std::make_unique<OutputLock>(folder_ / "a.mkv", folder_ / "a.lock", first, last);
  }
  bool IsFree(std::int64_t first = 0, std::int64_t last = -1) const {
    return !FailureOf([&] { Lock(first, last); });
  }

  ScratchFolder folder_;
};

}  // namespace

TEST_F(OutputLockTest, NamesTheProcessThatHasIt) {
  const auto lock = Lock();
  const auto failure = FailureOf([&] { Lock(); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::CannotWrite);
  EXPECT_THAT(failure->message, HasSubstr("a.mkv: another run (process " +
                                          std::to_string(getpid()) + ") is writing it"));
}

TEST_F(OutputLockTest, LeavesNoFile) {
  {
    const auto lock = Lock();
    EXPECT_THAT(folder_.Names(), ElementsAre("a.lock"));
  }
  EXPECT_THAT(folder_.Names(), IsEmpty());
  EXPECT_TRUE(IsFree());
}

TEST_F(OutputLockTest, IsNotHeldByAFileThatAKilledRunLeft) {
  WriteBytes(folder_ / "a.lock", {'1', ' ', '0', '\n'});
  EXPECT_TRUE(IsFree());
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(OutputLockTest, LetsOtherPicturesOfASequenceBeWritten) {
  const auto lock = Lock(10, 19);
  EXPECT_TRUE(IsFree(20, 29));
  EXPECT_TRUE(IsFree(20));
  EXPECT_FALSE(IsFree(19, 29));
  EXPECT_FALSE(IsFree());
  EXPECT_FALSE(IsFree(10, 19)) << "the runs that came and went have left it its file";
}

TEST_F(OutputLockTest, IsOneRunsAloneHoweverRunsComeAndGo) {
  std::atomic<int> inside = 0;
  std::atomic<int> together = 0;
  std::atomic<int> runs = 0;
  const auto comeAndGo = [&] {
    for (int i = 0; i < 200; ++i) {
      FailureOf([&] {
        const auto lock = Lock();
        if (++inside > 1) ++together;
        ++runs;
        --inside;
      });
    }
  };
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(comeAndGo);
  }
  EXPECT_EQ(together, 0);
  EXPECT_GT(runs, 200);
}

TEST_F(OutputLockTest, TellsOfAFolderThatTakesNoFile) {
  const auto failure = FailureOf(
      [&] { const OutputLock lock(folder_ / "no" / "a.mkv", folder_ / "no" / "a.lock"); });
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->message, HasSubstr("no file can be made beside it"));
}
