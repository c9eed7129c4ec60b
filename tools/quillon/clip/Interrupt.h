#pragma once

/// While it lives, the first Ctrl-C (SIGINT) or SIGTERM sets a flag instead of ending the program;
/// the second one ends it. One at a time.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;

  bool IsInterrupted() const;
};
