#include "refhost/orvcore/AsyncExecutor.h"

#include <utility>

#include "refhost/orvcore/Arena.h"

namespace orvcore::threads {

namespace {

const std::shared_ptr<AsyncExecutor>& Pool() {
  static const auto& pool =
      *std::make_unique<std::shared_ptr<AsyncExecutor>>(std::make_shared<AsyncExecutor>())
           .release();
  return pool;
}

}  // namespace

void AsyncExecutor::SendHelper(std::shared_ptr<RefHost::Job> job) {
  // What a helper reads reaches it through this mutex, which the thread sanitizer sees, unlike
  // the arena's own queues.
  const std::lock_guard lock(mutex_);
  waiting_.push_back(std::move(job));
  try {
    RefHost::Arena::Enqueue([] { Pool()->RunHelper(); });
  } catch (...) {
    waiting_.pop_back();
    throw;
  }
}

void AsyncExecutor::RunHelper() noexcept {
  std::shared_ptr<RefHost::Job> job;
  {
    const std::lock_guard lock(mutex_);
    job = std::move(waiting_.front());
    waiting_.pop_front();
  }
  job->Help();
}

std::shared_ptr<AsyncExecutor> CreateCPUBoundExecutor() { return Pool(); }

}  // namespace orvcore::threads
