#pragma once

#include <oneapi/tbb/task_arena.h>

namespace orvcore::threads {

/// oneTBB's threads.
class Arena {
 public:
  /// Has one of the threads call `work`, some time. `work` does not throw. Any thread.
  void Enqueue(void (*work)());

 private:
  tbb::task_arena arena_;
};

}  // namespace orvcore::threads
