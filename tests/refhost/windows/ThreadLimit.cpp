#include "tests/refhost/ThreadLimit.h"

#include <stdexcept>

#include <windows.h>

/// The processors that the process had before.
struct ThreadLimit::Setting {
  DWORD_PTR mask = 0;
};

ThreadLimit::ThreadLimit(int threads) : setting_(std::make_unique<Setting>()) {
  DWORD_PTR ofSystem = 0;
  GetProcessAffinityMask(GetCurrentProcess(), &setting_->mask, &ofSystem);
  DWORD_PTR kept = 0;
  DWORD_PTR left = setting_->mask;
  for (int i = 0; i < threads; ++i) {
    const DWORD_PTR lowest = left & (~left + 1);
    if (lowest == 0) throw std::runtime_error("the process has too few processors");
    kept |= lowest;
    left &= ~lowest;
  }
  if (!SetProcessAffinityMask(GetCurrentProcess(), kept)) {
    throw std::runtime_error("the processors of the process cannot be set");
  }
}

ThreadLimit::~ThreadLimit() { SetProcessAffinityMask(GetCurrentProcess(), setting_->mask); }
