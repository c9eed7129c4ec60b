#include <limits>
#include <thread>

#include "base/Trace.h"
#include "tests/host/HostTest.h"

namespace {

using scripted::Lines;
using scripted::Message;
using testing::ElementsAre;
using testing::IsEmpty;

/// A failure site of its own for every number.
template <int site>
void Fail() {
  Quillon::TraceFailure([](auto& message) { message << "Operation : site " << site; });
}

class Trace : public scripted::HostTest {
 protected:
  long TimesAsked() {
    return static_cast<long>(host.CallsTo({"orvcore::debug::TraceEnabled"}).size());
  }
};

TEST_F(Trace, ReadsTheCountAsksAndThenDeliversTheMessage) {
  Fail<1>();
  EXPECT_THAT(host.Calls(),
              ElementsAre("orvcore::debug::TraceChangeCount()",
                          "orvcore::debug::TraceEnabled(Quillon, 7, true)",
                          "orvcore::debug::Trace(7, Quillon, \"Operation : site 1\\r\\n\")"));
  EXPECT_THAT(host.Messages(), ElementsAre(Message{7, "Quillon", "Operation : site 1\r\n"}));
}

TEST_F(Trace, UsesAnotherCategoryForTheQuestionAndTheMessage) {
  Quillon::TraceFailure("QuillonImpl", [](auto& message) { message << "x"; });
  EXPECT_THAT(host.Calls(), ElementsAre("orvcore::debug::TraceChangeCount()",
                                        "orvcore::debug::TraceEnabled(QuillonImpl, 7, true)",
                                        "orvcore::debug::Trace(7, QuillonImpl, \"x\\r\\n\")"));
}

TEST_F(Trace, ComposesNothingWhenNobodyListens) {
  host.results.traceEnabled = false;
  bool composed = false;
  Quillon::TraceFailure([&](auto&) { composed = true; });
  EXPECT_FALSE(composed);
  EXPECT_THAT(host.Messages(), IsEmpty());
}

template <int site>
void ExpectFirstFailureToAsk(scripted::Host& host, std::int32_t count) {
  host.Reset();
  host.results.traceChangeCount = count;
  Fail<site>();
  EXPECT_EQ(host.Messages().size(), 1U) << "count " << count;
}

TEST_F(Trace, FirstFailureAsksWhateverTheCount) {
  ExpectFirstFailureToAsk<10>(host, 0);
  ExpectFirstFailureToAsk<11>(host, 1);
  ExpectFirstFailureToAsk<12>(host, -1);
  ExpectFirstFailureToAsk<13>(host, std::numeric_limits<std::int32_t>::min());
  ExpectFirstFailureToAsk<14>(host, std::numeric_limits<std::int32_t>::max());
}

TEST_F(Trace, AsksAgainOnlyAfterTheCountHasMoved) {
  Fail<20>();
  Fail<20>();
  Fail<20>();
  EXPECT_EQ(TimesAsked(), 1);
  EXPECT_EQ(host.Messages().size(), 3U);

  host.results.traceChangeCount = 2;
  Fail<20>();
  Fail<20>();
  EXPECT_EQ(TimesAsked(), 2);

  host.results.traceChangeCount = 1;  // moved is moved, whichever way
  Fail<20>();
  EXPECT_EQ(TimesAsked(), 3);
}

TEST_F(Trace, ReadsTheCountAtEveryFailure) {
  Fail<21>();
  Fail<21>();
  EXPECT_EQ(host.CallsTo({"orvcore::debug::TraceChangeCount"}).size(), 2U);
}

TEST_F(Trace, KeepsTheOldAnswerUntilTheCountMoves) {
  host.results.traceEnabled = false;
  Fail<22>();
  host.results.traceEnabled = true;
  Fail<22>();
  EXPECT_THAT(host.Messages(), IsEmpty());
  host.results.traceChangeCount = 2;
  Fail<22>();
  EXPECT_EQ(host.Messages().size(), 1U);
  host.results.traceEnabled = false;
  Fail<22>();
  EXPECT_EQ(host.Messages().size(), 2U);
}

TEST_F(Trace, GivesEachSiteItsOwnCache) {
  Fail<30>();
  Fail<31>();
  EXPECT_EQ(TimesAsked(), 2);
  host.results.traceChangeCount = 2;
  Fail<30>();
  EXPECT_EQ(TimesAsked(), 3);
  Fail<31>();
  EXPECT_EQ(TimesAsked(), 4);
}

TEST_F(Trace, MayBeCalledFromManyThreads) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 50; ++turn) Fail<40>();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(host.CallsTo({"orvcore::debug::TraceChangeCount"}).size(), 200U);
  EXPECT_LE(TimesAsked(), 4);
}

}  // namespace
