#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <thread>

#include <sys/resource.h>

/// Waits until something is so; false after a minute.
inline bool WaitUntil(const std::function<bool()>& isSo) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (std::chrono::steady_clock::now() < deadline) {
    if (isSo()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return false;
}

/// Waits until a file has as many bytes; false after a minute.
inline bool WaitForBytes(const std::filesystem::path& path, std::uintmax_t bytes) {
  return WaitUntil([&] {
    std::error_code error;
    return std::filesystem::file_size(path, error) >= bytes && !error;
  });
}

/// Files of this process and its children cannot grow past a size while it lives, as on a full
/// disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, SIG_DFL);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
};
