#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "host/orvcore/Threads.h"
#include "tests/Meeting.h"
#include "tests/refhost/ThreadLimit.h"

namespace orvcore::threads {
namespace {

std::shared_ptr<AsyncThreadedSubExecutor> MakeSubExecutor(int concurrency) {
  return CreateSubExecutor(CreateCPUBoundExecutor(), concurrency);
}

/// Counts how many of its tasks run at once.
class Crowd {
 public:
  void operator()() {
    const int now = ++running_;
    int most = most_;
    while (now > most && !most_.compare_exchange_weak(most, now)) {
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    --running_;
  }
  int Most() const { return most_; }

 private:
  std::atomic<int> running_{0};
  std::atomic<int> most_{0};
};

TEST(SubExecutor, RunsEveryTaskBeforeTheWaitReturns) {
  const auto executor = MakeSubExecutor(16);
  std::vector<int> runs(100);
  for (int& run : runs) executor->Queue([&run] { ++run; }, 0);
  executor->WaitForAll();
  EXPECT_EQ(runs, std::vector<int>(100, 1));
}

TEST(SubExecutor, MayBeUsedAgainAfterAWait) {
  const auto executor = MakeSubExecutor(4);
  int sum = 0;
  for (int round = 0; round < 200; ++round) {
    std::vector<int> parts(8);
    for (int& part : parts) executor->Queue([&part, round] { part = round; }, 0);
    executor->WaitForAll();
    sum += std::accumulate(parts.begin(), parts.end(), 0);
  }
  EXPECT_EQ(sum, 8 * 199 * 200 / 2);
}

TEST(SubExecutor, ReturnsAtOnceFromAWaitForNothing) {
  const auto executor = MakeSubExecutor(2);
  EXPECT_NO_THROW(executor->WaitForAll());
}

TEST(SubExecutor, RunsTasksOnThreadsOfThePoolBesideTheWaitingOne) {
  const ThreadLimit twoThreads(2);
  const auto executor = MakeSubExecutor(2);
  Meeting ran(2);
  std::thread::id thread;
  executor->Queue(
      [&] {
        thread = std::this_thread::get_id();
        ran.ArriveAndWait();
      },
      0);
  ran.ArriveAndWait();
  executor->WaitForAll();
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(SubExecutor, RunsTasksAtOnceWhereMoreThreadsAreAllowed) {
  const ThreadLimit twoThreads(2);
  const auto executor = MakeSubExecutor(2);
  Meeting bothRun(2);  // a task passes it only while the other one runs
  executor->Queue([&bothRun] { bothRun.ArriveAndWait(); }, 0);
  executor->Queue([&bothRun] { bothRun.ArriveAndWait(); }, 0);
  executor->WaitForAll();
  EXPECT_TRUE(bothRun.AllCame());
}

TEST(SubExecutor, RunsEveryTaskOnTheWaitingThreadWhereOneThreadIsAllowed) {
  const ThreadLimit oneThread(1);
  const auto executor = MakeSubExecutor(16);
  std::vector<std::thread::id> threads(20);
  for (std::thread::id& thread : threads) {
    executor->Queue(
        [&thread] {
          thread = std::this_thread::get_id();
          std::this_thread::sleep_for(std::chrono::milliseconds(1));  // time for others to come
        },
        0);
  }
  executor->WaitForAll();
  EXPECT_EQ(threads, std::vector<std::thread::id>(20, std::this_thread::get_id()));
}

TEST(SubExecutor, NeverRunsMoreTasksAtOnceThanAllowed) {
  for (const int allowed : {1, 2}) {
    const auto executor = MakeSubExecutor(allowed);
    EXPECT_EQ(executor->Concurrency(), allowed);
    Crowd crowd;
    for (int i = 0; i < 40; ++i) executor->Queue(std::ref(crowd), 0);
    // Every waiting thread helps, so these would be too many.
    std::vector<std::thread> waiting;
    waiting.reserve(4);
    for (int i = 0; i < 4; ++i) waiting.emplace_back([&executor] { executor->WaitForAll(); });
    for (std::thread& thread : waiting) thread.join();
    EXPECT_LE(crowd.Most(), allowed);
  }
}

TEST(SubExecutor, RunsTasksInTheirOrderWhereOneMayRunAtATime) {
  const auto executor = MakeSubExecutor(1);
  std::vector<int> order;
  for (int i = 0; i < 5; ++i) executor->Queue([&order, i] { order.push_back(i); }, 0);
  executor->WaitForAll();
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(SubExecutor, RaisesTheFirstExceptionFromTheWaitAfterAllTasksHaveRun) {
  const auto executor = MakeSubExecutor(1);
  int ran = 0;
  for (const char* text : {"first", "second"}) {
    executor->Queue([&ran] { ++ran; }, 0);
    executor->Queue([text] { throw std::runtime_error(text); }, 0);
  }
  executor->Queue([&ran] { ++ran; }, 0);
  try {
    executor->WaitForAll();
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "first");
  }
  EXPECT_EQ(ran, 3);
}

TEST(SubExecutor, ReportsAnExceptionOnce) {
  const auto executor = MakeSubExecutor(4);
  for (int i = 0; i < 10; ++i) executor->Queue([] { throw 1; }, 0);
  EXPECT_THROW(executor->WaitForAll(), int);
  executor->Queue([] {}, 0);
  EXPECT_NO_THROW(executor->WaitForAll());
}

TEST(SubExecutor, ReportsAnEmptyFunctionFromTheWait) {
  const auto executor = MakeSubExecutor(2);
  executor->Queue({}, 0);
  EXPECT_THROW(executor->WaitForAll(), std::bad_function_call);
}

TEST(SubExecutor, WaitsForItsTasksWhenItEnds) {
  std::vector<int> runs(50);
  {
    const auto executor = MakeSubExecutor(4);
    for (int& run : runs) {
      executor->Queue(
          [&run] {
            std::this_thread::yield();
            ++run;
          },
          0);
    }
  }
  EXPECT_EQ(runs, std::vector<int>(50, 1));
}

TEST(SubExecutor, DropsExceptionsThatNoOneWaitedFor) {
  auto executor = MakeSubExecutor(2);
  executor->Queue([] { throw std::runtime_error("dropped"); }, 0);
  EXPECT_NO_THROW(executor.reset());
}

TEST(SubExecutor, HasReleasedWhatItsTasksHoldWhenTheWaitReturns) {
  const auto executor = MakeSubExecutor(4);
  const auto held = std::make_shared<int>(0);
  for (int i = 0; i < 20; ++i) {
    executor->Queue(
        [held, i] {
          if (i % 2 == 0) throw i;
        },
        0);
  }
  EXPECT_THROW(executor->WaitForAll(), int);
  EXPECT_EQ(held.use_count(), 1);
}

TEST(SubExecutor, TakesTasksFromItsOwnTasks) {
  const auto executor = MakeSubExecutor(2);
  std::atomic<int> ran{0};
  for (int i = 0; i < 10; ++i) {
    executor->Queue(
        [&] {
          ++ran;
          executor->Queue([&ran] { ++ran; }, 0);
        },
        0);
  }
  executor->WaitForAll();
  EXPECT_EQ(ran, 20);
}

TEST(SubExecutor, MayBeMadeAndWaitedForInsideATaskOfAnother) {
  const auto outer = MakeSubExecutor(4);
  std::vector<int> sums(8);
  for (int& sum : sums) {
    outer->Queue(
        [&sum] {
          const auto inner = MakeSubExecutor(4);
          std::vector<int> parts(8);
          for (int& part : parts) inner->Queue([&part] { part = 1; }, 0);
          inner->WaitForAll();
          sum = std::accumulate(parts.begin(), parts.end(), 0);
        },
        0);
  }
  outer->WaitForAll();
  EXPECT_EQ(sums, std::vector<int>(8, 8));
}

TEST(SubExecutor, ServesManyCallersAtOnce) {
  std::vector<int> sums(4);
  std::vector<std::thread> callers;
  callers.reserve(sums.size());
  for (int& sum : sums) {
    callers.emplace_back([&sum] {
      for (int round = 0; round < 100; ++round) {
        const auto executor = MakeSubExecutor(16);
        std::vector<int> parts(16);
        for (int& part : parts) executor->Queue([&part] { part = 1; }, 0);
        executor->WaitForAll();
        sum += std::accumulate(parts.begin(), parts.end(), 0);
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(sums, std::vector<int>(4, 1600));
}

TEST(CreateSubExecutor, TakesAConcurrencyBelowOneForOne) {
  for (const int concurrency : {0, -1, -1000}) {
    const auto executor = MakeSubExecutor(concurrency);
    ASSERT_NE(executor, nullptr);
    EXPECT_EQ(executor->Concurrency(), 1);
    bool ran = false;
    executor->Queue([&ran] { ran = true; }, 0);
    executor->WaitForAll();
    EXPECT_TRUE(ran);
  }
}

TEST(CreateSubExecutor, GivesNullForANullExecutor) { EXPECT_EQ(CreateSubExecutor({}, 4), nullptr); }

TEST(CreateSubExecutor, KeepsWhatItNeedsOfTheExecutor) {
  auto pool = CreateCPUBoundExecutor();
  ASSERT_NE(pool, nullptr);
  const auto executor = CreateSubExecutor(pool, 4);
  pool.reset();
  std::atomic<int> ran{0};
  for (int i = 0; i < 10; ++i) executor->Queue([&ran] { ++ran; }, 0);
  executor->WaitForAll();
  EXPECT_EQ(ran, 10);
}

}  // namespace
}  // namespace orvcore::threads
