#include <barrier>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "host/orvcore/Debug.h"
#include "mapper/EngineMessages.h"
#include "refhost/orvcore/TraceSettings.h"

using orvcore::debug::Trace;
using Quillon::Mapper::EngineMessages;

namespace {

TEST(EngineMessages, AreThoseOfTheirTimeInOrder) {
  Trace(7, "Quillon", "before\r\n");
  std::string said;
  {
    const EngineMessages messages;
    Trace(7, "Quillon", "first\r\n");
    Trace(7, "QuillonImpl", "second\r\n");
    Trace(8, "Quillon", "beyond the engine's level\r\n");
    said = messages.Joined();
  }
  EXPECT_EQ(said, "first; second");
}

TEST(EngineMessages, OfAThreadThatCollectsStayThere) {
  std::barrier together(2);
  const auto collect = [&together](const std::string& text) {
    const EngineMessages messages;
    together.arrive_and_wait();
    Trace(7, "Quillon", text);
    together.arrive_and_wait();
    EXPECT_EQ(messages.Joined(), text);
  };
  std::thread one(collect, "one");
  std::thread other(collect, "other");
  one.join();
  other.join();
}

TEST(EngineMessages, OfAThreadThatDoesNotAreForAll) {
  const EngineMessages messages;
  std::thread([] { Trace(7, "Quillon", "from a band"); }).join();
  EXPECT_EQ(messages.Joined(), "from a band");
}

TEST(EngineMessages, LeaveTheSinkOfTheProgramAlone) {
  std::string heard;
  RefHost::SetTraceSink([&](int, std::string_view, std::string_view text) { heard += text; });
  RefHost::SetTraceLevel(3);
  {
    const EngineMessages messages;
    Trace(7, "Quillon", "failure");
    Trace(3, "Other", "note");
    EXPECT_EQ(messages.Joined(), "failure; note");
  }
  Trace(3, "Other", ", still");
  EXPECT_FALSE(orvcore::debug::TraceEnabled("Quillon", 7, true));
  RefHost::SetTraceLevel(0);
  RefHost::SetTraceSink({});
  EXPECT_EQ(heard, "note, still");
}

TEST(EngineMessages, WithinOthersAreTheInnermosts) {
  const EngineMessages outer;
  {
    const EngineMessages inner;
    Trace(7, "Quillon", "inner");
    EXPECT_EQ(inner.Joined(), "inner");
  }
  Trace(7, "Quillon", "outer");
  EXPECT_EQ(outer.Joined(), "outer");
}

}  // namespace
