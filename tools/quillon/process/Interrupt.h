#pragma once

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

/// From now on Ctrl-C (SIGINT) and SIGTERM remove unfinished files and end the program with the
/// exit code of the signal, but for what an InterruptGuard says.
void EndOnSignals();

/// While it lives, the first SIGINT or SIGTERM sets a flag instead of ending the program; the
/// second one ends it. One at a time. The flag stays set.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;

  bool IsInterrupted() const;
  /// Of the signal that came; Interrupted where none did.
  ExitCode Code() const;
};

}  // namespace Quillon::Cli
