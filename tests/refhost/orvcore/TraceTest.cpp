#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/orvcore/Debug.h"
#include "refhost/orvcore/TraceSettings.h"

using orvcore::debug::Trace;
using orvcore::debug::TraceChangeCount;
using orvcore::debug::TraceEnabled;
using RefHost::SetTraceLevel;
using RefHost::SetTraceSink;
using testing::ElementsAre;

namespace {

const std::int32_t kCountAtStart = TraceChangeCount();

using Message = std::tuple<int, std::string, std::string>;

class Tracing : public testing::Test {
 protected:
  Tracing() {
    SetTraceSink([this](int level, std::string_view category, std::string_view text) {
      const std::lock_guard lock(mutex_);
      messages_.emplace_back(level, category, text);
    });
  }
  ~Tracing() override {
    SetTraceSink({});
    SetTraceLevel(0);
    RefHost::ClearCategoryTraceLevels();
  }

  std::mutex mutex_;
  std::vector<Message> messages_;
};

TEST_F(Tracing, EnablesMessagesUpToTheGeneralLevel) {
  SetTraceLevel(7);
  EXPECT_TRUE(TraceEnabled("engine", 7, true));
  EXPECT_TRUE(TraceEnabled("engine", 1, true));
  EXPECT_FALSE(TraceEnabled("engine", 8, true));
}

TEST_F(Tracing, IsOffAtFirst) { EXPECT_FALSE(TraceEnabled("engine", 1, true)); }

TEST_F(Tracing, LetsACategorysOwnLevelPrevail) {
  SetTraceLevel(7);
  SetTraceLevel("quiet", 3);
  SetTraceLevel("loud", 9);
  EXPECT_FALSE(TraceEnabled("quiet", 4, true));
  EXPECT_TRUE(TraceEnabled("quiet", 3, true));
  EXPECT_TRUE(TraceEnabled("loud", 9, false));
  EXPECT_FALSE(TraceEnabled("loud", 10, true));
}

TEST_F(Tracing, LooksAtTheGeneralLevelOnlyWhenAskedTo) {
  SetTraceLevel(7);
  EXPECT_FALSE(TraceEnabled("engine", 1, false));
}

TEST_F(Tracing, StartsItsChangeCountAtOne) { EXPECT_EQ(kCountAtStart, 1); }

TEST_F(Tracing, MovesTheChangeCountWithEveryChangeAndOnlyThen) {
  std::int32_t count = TraceChangeCount();
  const auto moved = [&count] {
    const std::int32_t before = count;
    count = TraceChangeCount();
    return count > before;
  };
  SetTraceLevel(5);
  EXPECT_TRUE(moved());
  SetTraceLevel("engine", 5);
  EXPECT_TRUE(moved());
  SetTraceSink([](int, std::string_view, std::string_view) {});
  EXPECT_TRUE(moved());
  RefHost::ClearCategoryTraceLevels();
  EXPECT_TRUE(moved());
  EXPECT_TRUE(TraceEnabled("engine", 5, true));
  Trace(5, "engine", "text");
  EXPECT_FALSE(moved());
}

TEST_F(Tracing, HandsEnabledMessagesToTheSink) {
  SetTraceLevel(7);
  Trace(7, "engine", "one\r\n");
  Trace(8, "engine", "not this\r\n");
  Trace(2, "other", "two");
  EXPECT_THAT(messages_, ElementsAre(Message(7, "engine", "one\r\n"), Message(2, "other", "two")));
}

TEST_F(Tracing, DropsWhatTheSinkThrows) {
  SetTraceLevel(7);
  int calls = 0;
  SetTraceSink([&calls](int, std::string_view, std::string_view) {
    ++calls;
    throw std::runtime_error("full disk");
  });
  EXPECT_NO_THROW(Trace(7, "engine", "text"));
  EXPECT_EQ(calls, 1);
}

TEST_F(Tracing, LetsTheSinkChangeTheSettings) {
  SetTraceLevel(7);
  SetTraceSink([](int, std::string_view, std::string_view) { SetTraceLevel(0); });
  Trace(7, "engine", "text");
  EXPECT_FALSE(TraceEnabled("engine", 7, true));
}

TEST_F(Tracing, WritesToStandardErrorWithoutASink) {
  SetTraceLevel(7);
  SetTraceSink({});
  testing::internal::CaptureStderr();
  Trace(7, "engine", "seen\r\n");
  Trace(8, "engine", "not seen\r\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "seen\r\n");
}

TEST_F(Tracing, TakesMessagesAndChangesFromManyThreads) {
  constexpr int kMessages = 500;
  SetTraceLevel(7);
  const std::int32_t before = TraceChangeCount();
  const auto work = [] {
    for (int i = 0; i < kMessages; ++i) {
      Trace(7, "engine", "text");
      SetTraceLevel("other", i);
    }
  };
  std::thread first(work);
  std::thread second(work);
  first.join();
  second.join();
  EXPECT_EQ(messages_.size(), 2U * kMessages);
  EXPECT_EQ(TraceChangeCount() - before, 2 * kMessages);
}

}  // namespace
