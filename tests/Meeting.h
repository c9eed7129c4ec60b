#pragma once

#include <condition_variable>
#include <mutex>

/// Threads wait here for one another. (At a std::latch they may wait forever where GCC 12's library
/// builds it without futexes: it lets a notification slip between a look and the wait.)
class Meeting {
 public:
  explicit Meeting(int threads) : missing_(threads) {}

  void ArriveAndWait() {
    std::unique_lock lock(mutex_);
    --missing_;
    arrived_.notify_all();
    arrived_.wait(lock, [this] { return missing_ <= 0; });
  }

  bool AllCame() {
    const std::lock_guard lock(mutex_);
    return missing_ <= 0;
  }

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  int missing_;
};
