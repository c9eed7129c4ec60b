#pragma once

#include <deque>
#include <memory>
#include <mutex>

#include "host/orvcore/Threads.h"
#include "refhost/orvcore/Arena.h"

namespace orvcore::threads {

/// Work that a thread of the pool takes part in.
class Job {
 public:
  virtual ~Job() = default;
  /// Works until nothing is left to do. Does not throw.
  virtual void Help() noexcept = 0;
};

/// The process's pool of threads.
class AsyncExecutor {
 public:
  /// How many threads are to work at once, the calling thread among them: what oneTBB's global
  /// control allows, at least 1.
  static int Parallelism();

  /// Sends one thread to help with the job, some time. Any thread.
  void SendHelper(std::shared_ptr<Job> job);

 private:
  void RunHelper() noexcept;

  std::mutex mutex_;
  std::deque<std::shared_ptr<Job>> waiting_;
  Arena arena_;
};

}  // namespace orvcore::threads
