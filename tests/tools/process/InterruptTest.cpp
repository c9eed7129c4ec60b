#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/tools/RunQuillon.h"
#include "tests/tools/ScratchFolder.h"
#include "tools/quillon/process/Interrupt.h"
#include "tools/quillon/process/UnfinishedFile.h"

using namespace Quillon::Cli;

TEST(EndOnSignals, EndsWithTheCodeOfTheSignalAndTakesUnfinishedFilesAway) {
  for (const auto& [signal, code] :
       std::vector<std::pair<int, int>>{{SIGINT, 130}, {SIGTERM, 143}}) {
    const ScratchFolder folder;
    for (const char* name : {"a", "b", "c"}) WriteFile(folder / name, "x");
    EXPECT_EXIT(
        {
          EndOnSignals();
          const UnfinishedFile first(folder / "a");
          const UnfinishedFile second(folder / "b");
          { const UnfinishedFile finished(folder / "c"); }
          std::raise(signal);
        },
        testing::ExitedWithCode(code), "");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"c"});
  }
}

TEST(InterruptGuard, HoldsTheFirstSignalAndNotTheSecond) {
  EXPECT_EXIT(
      {
        EndOnSignals();
        const InterruptGuard guard;
        std::raise(SIGTERM);
        if (!guard.IsInterrupted() || guard.Code() != ExitCode::Terminated) _exit(1);
        std::raise(SIGINT);
        _exit(2);
      },
      testing::ExitedWithCode(130), "");
}

TEST(InterruptGuard, LeavesTheEndToSignalsAfterIt) {
  EXPECT_EXIT(
      {
        { const InterruptGuard guard; }
        std::raise(SIGTERM);
        _exit(2);
      },
      testing::ExitedWithCode(143), "");
}
