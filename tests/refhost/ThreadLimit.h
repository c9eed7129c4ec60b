#pragma once

#include <memory>

/// While it lives, no more than this many threads work on what the host's executors are given. On
/// Windows it throws where the process has fewer processors.
class ThreadLimit {
 public:
  explicit ThreadLimit(int threads);
  ~ThreadLimit();
  ThreadLimit(const ThreadLimit&) = delete;
  ThreadLimit& operator=(const ThreadLimit&) = delete;

 private:
  struct Setting;
  std::unique_ptr<Setting> setting_;
};
