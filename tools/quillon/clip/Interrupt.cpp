#include "tools/quillon/clip/Interrupt.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void OnSignal(int signal) {
  interrupted = true;
  std::signal(signal, SIG_DFL);
}

}  // namespace

InterruptGuard::InterruptGuard() {
  interrupted = false;
  std::signal(SIGINT, OnSignal);
  std::signal(SIGTERM, OnSignal);
}

InterruptGuard::~InterruptGuard() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool InterruptGuard::IsInterrupted() const { return interrupted; }
