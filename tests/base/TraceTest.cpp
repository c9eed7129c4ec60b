#include <limits>
#include <locale>
#include <memory>
#include <thread>
#include <utility>

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

TEST_F(Trace, AsksOnlyOnceTheCountIsExchanged) {
  // A host that fails in its own answer comes back to the same site, which does not ask again.
  bool nested = false;
  host.results.onCall = [&](const std::string& operation) {
    if (operation != "orvcore::debug::TraceEnabled" || std::exchange(nested, true)) return;
    Fail<23>();
  };
  Fail<23>();
  EXPECT_TRUE(nested);
  EXPECT_EQ(TimesAsked(), 1);
}

TEST_F(Trace, TakesItsMemoryFromTheRecyclerAndGivesItBack) {
  scripted::Recycler::Instance().FailAllocation(0);
  Fail<24>();
  EXPECT_GT(scripted::Recycler::Instance().Allocations(), 0);
  const int once = scripted::Recycler::Instance().Allocations();
  Quillon::TraceFailure([](auto& message) { message << std::string(5000, 'x'); });
  EXPECT_GT(scripted::Recycler::Instance().Allocations(), once);
  EXPECT_EQ(host.Messages().back().text, std::string(5000, 'x') + "\r\n");
}

TEST_F(Trace, LetsTheRecyclersExceptionPassAndDeliversNoCutOffMessage) {
  // Pieces of which each makes the text outgrow what it has.
  const auto fail = [] {
    Quillon::TraceFailure([](auto& message) {
      for (std::size_t length = 100; length < 10000; length *= 4) {
        message << std::string(length, 'x') << 12345;
      }
    });
  };
  scripted::Recycler::Instance().FailAllocation(0);
  fail();
  const int allocations = scripted::Recycler::Instance().Allocations();
  EXPECT_GT(allocations, 3);
  const std::vector<Message> whole = host.Messages();
  for (int nth = 1; nth <= allocations; ++nth) {
    scripted::Recycler::Instance().FailAllocation(nth);
    EXPECT_THROW(fail(), std::bad_alloc) << nth;
    EXPECT_EQ(host.Messages(), whole) << nth;
  }
}

/// Numbers as 1.234.567.
struct Grouped : std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST_F(Trace, WritesNumbersTheSameWhateverTheGlobalLocale) {
  const std::locale before = std::locale::global(
      std::locale(std::locale::classic(), std::make_unique<Grouped>().release()));
  Quillon::TraceFailure([](auto& message) { message << 1234567 << ' ' << 0.5; });
  std::locale::global(before);
  EXPECT_EQ(host.Messages().back().text, "1234567 0.5\r\n");
}

TEST_F(Trace, LosesNoMessageOnceItsSiteHasAsked) {
  Fail<41>();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 50; ++turn) Fail<41>();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(host.Messages(),
            std::vector<Message>(201, Message{7, "Quillon", "Operation : site 41\r\n"}));
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
