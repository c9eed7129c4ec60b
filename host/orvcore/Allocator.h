#pragma once

#include <cstddef>
#include <limits>
#include <new>

namespace orvcore::allocator {

// Memory of the engine: parameters of a curve (13 floats at most), texts of trace messages, and for
// BT.2390 the tables of a call, some 110 kB at most. Frames are not among it: they are made by
// host/kestrel/CreateFrames.h. A host that keeps no store may hand over to aligned new and delete.
//
// Bands take none while they run. Blocks are not cleared, and not shared between
// calls.

/// Process-wide store of memory blocks that are kept for reuse. There from the loading of the
/// library to the end of the process. Any thread: the engine allocates on the thread of its caller
/// and gives back there or on the thread of a band.
struct MemoryRecycler {
  /// A block of at least `bytes` bytes, aligned to 64 bytes, contents undefined; the caller's until
  /// he gives it back. Throws std::bad_alloc where there is none, which passes through the engine.
  static void* Allocate(std::size_t bytes);

  /// Takes a block back; `bytes` is the size it was asked for with. Every block that the engine
  /// took comes back once, on every path, but for the tables that stay with the process.
  static void Recycle(void* block, std::size_t bytes) noexcept;
};

/// A block that goes back to the recycler with its owner. The host's own: the engine names it and
/// passes none.
class RecycledMemory;

/// Standard allocator over `MemoryRecycler`, for the engine's vectors and strings. It has no state:
/// what one has allocated, any other gives back. The body stands here because every instance of it
/// is the engine's.
template <class T>
struct STLAllocator {
  using value_type = T;

  /// All are alike, of one type or of two.
  STLAllocator() noexcept = default;
  template <class U>
  STLAllocator(const STLAllocator<U>&) noexcept {}

  /// Room for `count` objects. Throws std::bad_alloc, also where their size overflows.
  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    return static_cast<T*>(MemoryRecycler::Allocate(count * sizeof(T)));
  }
  /// `count` is the one that the block was asked for with.
  void deallocate(T* block, std::size_t count) noexcept {
    MemoryRecycler::Recycle(block, count * sizeof(T));
  }

  template <class U>
  friend bool operator==(const STLAllocator&, const STLAllocator<U>&) noexcept {
    return true;
  }
};

}  // namespace orvcore::allocator
