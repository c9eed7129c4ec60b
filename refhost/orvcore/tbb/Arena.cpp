#include "refhost/orvcore/Arena.h"

#include <algorithm>
#include <limits>
#include <memory>

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>

namespace RefHost {

int Arena::Parallelism() {
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  const std::size_t allowed =
      tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism);
  return static_cast<int>(std::clamp<std::size_t>(allowed, 1, kMost));
}

void Arena::Enqueue(void (*work)()) {
  // Kept to the end of the process, where its threads may still be at work.
  static tbb::task_arena& arena = *std::make_unique<tbb::task_arena>().release();
  arena.enqueue(work);
}

}  // namespace RefHost
