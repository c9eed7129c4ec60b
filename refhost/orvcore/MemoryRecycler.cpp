#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <limits>
#include <memory>
#include <mutex>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

#include "host/orvcore/Allocator.h"
#include "refhost/orvcore/RecyclerStatistics.h"

namespace RefHost {

namespace {

constexpr std::align_val_t kAlignment{64};

/// Every kept block of a size serves every request of that size's class: eight classes for each
/// power of two.
std::size_t BlockBytes(std::size_t bytes) {
  const std::size_t step = std::bit_floor(bytes) >> 3U;
  return (bytes + step - 1) & ~(step - 1);
}

void* AllocateFromHeap(std::size_t bytes) { return ::operator new(bytes, kAlignment); }

void ReturnToHeap(void* block) noexcept { ::operator delete(block, kAlignment); }

/// Tells the address sanitizer, where there is one, how much of a block may be touched.
void Permit([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes,
            [[maybe_unused]] std::size_t blockBytes) noexcept {
#if defined(__SANITIZE_ADDRESS__)
  __asan_unpoison_memory_region(block, bytes);
  __asan_poison_memory_region(static_cast<std::byte*>(block) + bytes, blockBytes - bytes);
#endif
}

/// Blocks that wait for reuse, the one kept longest first.
class Store {
 public:
  void* Take(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    for (std::size_t i = count_; i-- > 0;) {
      if (blocks_[i].bytes != bytes) continue;
      void* block = Remove(i);
      CountInUse(bytes);
      return block;
    }
    return nullptr;
  }

  void CountNew(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    CountInUse(bytes);
  }

  void Keep(void* block, std::size_t bytes) noexcept {
    const std::lock_guard lock(mutex_);
    statistics_.inUse -= bytes;
    if (bytes > kMostKeptBytes) {
      FreeKept({block, bytes});
      return;
    }
    while (count_ == kMostKeptBlocks || statistics_.kept + bytes > kMostKeptBytes) FreeOldest();
    Permit(block, 0, bytes);
    blocks_[count_++] = {block, bytes};
    statistics_.kept += bytes;
  }

  void ReleaseAll() {
    const std::lock_guard lock(mutex_);
    while (count_ > 0) FreeOldest();
  }

  RecyclerStatistics Statistics() {
    const std::lock_guard lock(mutex_);
    return statistics_;
  }

  void ResetPeak() {
    const std::lock_guard lock(mutex_);
    statistics_.peak = statistics_.inUse;
  }

 private:
  struct Block {
    void* memory;
    std::size_t bytes;
  };

  void CountInUse(std::size_t bytes) {
    statistics_.inUse += bytes;
    statistics_.peak = std::max(statistics_.peak, statistics_.inUse);
  }

  void* Remove(std::size_t index) noexcept {
    const Block block = blocks_[index];
    std::copy(blocks_.begin() + static_cast<std::ptrdiff_t>(index) + 1,
              blocks_.begin() + static_cast<std::ptrdiff_t>(count_),
              blocks_.begin() + static_cast<std::ptrdiff_t>(index));
    --count_;
    statistics_.kept -= block.bytes;
    return block.memory;
  }

  void FreeOldest() noexcept {
    const std::size_t bytes = blocks_[0].bytes;
    FreeKept({Remove(0), bytes});
  }

  static void FreeKept(Block block) noexcept {
    Permit(block.memory, block.bytes, block.bytes);
    ReturnToHeap(block.memory);
  }

  std::mutex mutex_;
  std::array<Block, kMostKeptBlocks> blocks_{};
  std::size_t count_ = 0;
  RecyclerStatistics statistics_;
};

/// Never destroyed: blocks come back while the process ends.
Store& TheStore() {
  static Store& store = *std::make_unique<Store>().release();
  return store;
}

void* AllocateBlock(std::size_t bytes) {
  if (bytes < kKeptBlockBytes) return AllocateFromHeap(bytes);
  constexpr std::size_t kLargest = std::numeric_limits<std::size_t>::max() / 4;
  if (bytes > kLargest) throw std::bad_alloc();
  const std::size_t blockBytes = BlockBytes(bytes);
  void* block = TheStore().Take(blockBytes);
  if (block == nullptr) {
    block = AllocateFromHeap(blockBytes);
    TheStore().CountNew(blockBytes);
  }
  Permit(block, bytes, blockBytes);
  return block;
}

void RecycleBlock(void* block, std::size_t bytes) noexcept {
  if (block == nullptr) return;
  if (bytes < kKeptBlockBytes) {
    ReturnToHeap(block);
  } else {
    TheStore().Keep(block, BlockBytes(bytes));
  }
}

}  // namespace

RecyclerStatistics GetRecyclerStatistics() { return TheStore().Statistics(); }
void ResetRecyclerPeak() { TheStore().ResetPeak(); }
void ReleaseKeptBlocks() { TheStore().ReleaseAll(); }

}  // namespace RefHost

namespace orvcore::allocator {

void* MemoryRecycler::Allocate(std::size_t bytes) { return RefHost::AllocateBlock(bytes); }

void MemoryRecycler::Recycle(void* block, std::size_t bytes) noexcept {
  RefHost::RecycleBlock(block, bytes);
}

}  // namespace orvcore::allocator
