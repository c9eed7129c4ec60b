#pragma once

#include <cstddef>
#include <limits>
#include <new>

namespace orvcore::allocator {

/// Process-wide store of memory blocks that are kept for reuse. Any thread.
struct MemoryRecycler {
  /// A block of at least `bytes` bytes, aligned to 64 bytes, contents undefined. Throws
  /// std::bad_alloc.
  static void* Allocate(std::size_t bytes);

  /// Gives a block back; `bytes` is the size it was asked for with.
  static void Recycle(void* block, std::size_t bytes) noexcept;
};

/// A block that goes back to the recycler with its owner.
class RecycledMemory;

/// Standard allocator over `MemoryRecycler`.
template <class T>
struct STLAllocator {
  using value_type = T;

  STLAllocator() noexcept = default;
  template <class U>
  STLAllocator(const STLAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    return static_cast<T*>(MemoryRecycler::Allocate(count * sizeof(T)));
  }
  void deallocate(T* block, std::size_t count) noexcept {
    MemoryRecycler::Recycle(block, count * sizeof(T));
  }

  template <class U>
  friend bool operator==(const STLAllocator&, const STLAllocator<U>&) noexcept {
    return true;
  }
};

}  // namespace orvcore::allocator
