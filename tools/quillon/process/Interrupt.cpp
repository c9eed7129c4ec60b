#include "tools/quillon/process/Interrupt.h"

#include <atomic>
#include <csignal>

#include <unistd.h>

#include "tools/quillon/process/UnfinishedFile.h"

namespace Quillon::Cli {

namespace {

constexpr int kSignalBase = 128;  // exit codes of signals, as shells have them

std::atomic<bool> guarded = false;
std::atomic<int> caught = 0;
static_assert(std::atomic<int>::is_always_lock_free);
static_assert(static_cast<int>(ExitCode::Interrupted) == kSignalBase + SIGINT);
static_assert(static_cast<int>(ExitCode::Terminated) == kSignalBase + SIGTERM);

void OnSignal(int signal) {
  if (caught.exchange(signal) == 0 && guarded) return;
  RemoveUnfinishedFiles();
  _exit(kSignalBase + signal);
}

}  // namespace

void EndOnSignals() {
  std::signal(SIGINT, OnSignal);
  std::signal(SIGTERM, OnSignal);
}

InterruptGuard::InterruptGuard() {
  guarded = true;
  EndOnSignals();
}

InterruptGuard::~InterruptGuard() { guarded = false; }

bool InterruptGuard::IsInterrupted() const { return caught != 0; }

ExitCode InterruptGuard::Code() const {
  return caught == SIGTERM ? ExitCode::Terminated : ExitCode::Interrupted;
}

}  // namespace Quillon::Cli
