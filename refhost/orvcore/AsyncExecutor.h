#pragma once

#include <deque>
#include <memory>
#include <mutex>

#include "host/orvcore/Threads.h"

namespace RefHost {

/// Work that a thread of the pool takes part in.
class Job {
 public:
  virtual ~Job() = default;
  /// Works until nothing is left to do. Does not throw.
  virtual void Help() noexcept = 0;
};

}  // namespace RefHost

namespace orvcore::threads {

/// The process's pool of threads.
class AsyncExecutor {
 public:
  /// Sends one thread to help with the job, some time. Any thread.
  void SendHelper(std::shared_ptr<RefHost::Job> job);

 private:
  void RunHelper() noexcept;

  std::mutex mutex_;
  std::deque<std::shared_ptr<RefHost::Job>> waiting_;
};

}  // namespace orvcore::threads
