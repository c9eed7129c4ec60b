#pragma once

#include <cstddef>
#include <memory>

#include "host/orvcore/Allocator.h"

namespace orvcore::allocator {

/// Moving hands the block on and leaves an owner of nothing behind.
class RecycledMemory {
 public:
  /// Contents undefined, aligned to 64 bytes. Throws std::bad_alloc.
  explicit RecycledMemory(std::size_t bytes)
      : block_(static_cast<std::byte*>(MemoryRecycler::Allocate(bytes)), GiveBack{bytes}) {}

  std::byte* Data() const { return block_.get(); }
  /// In bytes, as it was asked for.
  std::size_t Size() const { return block_ == nullptr ? 0 : block_.get_deleter().bytes; }

 private:
  struct GiveBack {
    std::size_t bytes;
    void operator()(std::byte* block) const noexcept { MemoryRecycler::Recycle(block, bytes); }
  };

  std::unique_ptr<std::byte, GiveBack> block_;
};

}  // namespace orvcore::allocator
