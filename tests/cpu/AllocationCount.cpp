#include "tests/cpu/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> count{0};

}  // namespace

long AllocationCount() { return count; }

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
// Not inlined: GCC would see a block of malloc's go to operator delete.
[[gnu::noinline]] void* operator new(std::size_t bytes) {
  ++count;
  void* block = std::malloc(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

[[gnu::noinline]] void* operator new(std::size_t bytes, std::align_val_t alignment) {
  ++count;
  const auto step = static_cast<std::size_t>(alignment);
  void* block = std::aligned_alloc(step, (bytes + step - 1) / step * step);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*bytes*/) noexcept { operator delete(block); }
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept {
  operator delete(block);
}
void operator delete(void* block, std::size_t /*bytes*/, std::align_val_t /*alignment*/) noexcept {
  operator delete(block);
}
// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
