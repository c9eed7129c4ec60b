#include "refhost/orvcore/AsyncExecutor.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <oneapi/tbb/global_control.h>

namespace orvcore::threads {

namespace {

const std::shared_ptr<AsyncExecutor>& Pool() {
  static const auto& pool =
      *std::make_unique<std::shared_ptr<AsyncExecutor>>(std::make_shared<AsyncExecutor>())
           .release();
  return pool;
}

}  // namespace

int AsyncExecutor::Parallelism() {
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  const std::size_t allowed =
      tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism);
  return static_cast<int>(std::clamp<std::size_t>(allowed, 1, kMost));
}

void AsyncExecutor::SendHelper(std::shared_ptr<Job> job) {
  // What a helper reads reaches it through this mutex, which the thread sanitizer sees, unlike
  // oneTBB's own queues.
  const std::lock_guard lock(mutex_);
  waiting_.push_back(std::move(job));
  try {
    arena_.Enqueue([] { Pool()->RunHelper(); });
  } catch (...) {
    waiting_.pop_back();
    throw;
  }
}

void AsyncExecutor::RunHelper() noexcept {
  std::shared_ptr<Job> job;
  {
    const std::lock_guard lock(mutex_);
    job = std::move(waiting_.front());
    waiting_.pop_front();
  }
  job->Help();
}

std::shared_ptr<AsyncExecutor> CreateCPUBoundExecutor() { return Pool(); }

}  // namespace orvcore::threads
