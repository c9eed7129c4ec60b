#pragma once

namespace RefHost {

/// The threads that work comes to, one set for the process: oneTBB's, or on Windows the system's.
/// Any thread may call.
class Arena {
 public:
  /// How many threads are to work at once, the calling thread among them, at least 1: what oneTBB's
  /// global control allows, or as many as there are processors for this process.
  static int Parallelism();

  /// Has one of the threads call `work`, some time. `work` does not throw. Throws where the system
  /// refuses.
  static void Enqueue(void (*work)());
};

}  // namespace RefHost
