#include <atomic>
#include <cstdlib>
#include <new>

#include "gpu/KernelCache.h"
#include "tests/host/HostTest.h"

namespace {

std::atomic<long> liveBlocks{0};

}  // namespace

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
// Not inlined: GCC would see a block of malloc's go to operator delete.
[[gnu::noinline]] void* operator new(std::size_t bytes) {
  void* block = std::malloc(bytes);
  if (block == nullptr) throw std::bad_alloc();
  ++liveBlocks;
  return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
  if (block != nullptr) --liveBlocks;
  std::free(block);
}

void operator delete(void* block, std::size_t /*bytes*/) noexcept { operator delete(block); }
// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)

namespace {

class KernelCacheMemory : public scripted::HostTest {
 protected:
  /// Blocks that the cache holds after this many changes between two contexts.
  long BlocksAfter(Quillon::KernelCache& cache, int changes) {
    const long before = liveBlocks;
    for (int change = 0; change < changes; ++change) {
      host.Reset();
      cache.Get("kernel", device, {.contextIdentity = 1});
      cache.Get("kernel", device, {.contextIdentity = 2});
    }
    host.Reset();
    return liveBlocks - before;
  }

  std::shared_ptr<scripted::Device> device = scripted::MakeDevice();
};

TEST_F(KernelCacheMemory, DoesNotGrowWhileTwoContextsTakeTurns) {
  Quillon::KernelCache warmUp;
  BlocksAfter(warmUp, 2);
  Quillon::KernelCache cache;
  EXPECT_EQ(BlocksAfter(cache, 1), 2);
  EXPECT_EQ(BlocksAfter(cache, 100), 0);
}

TEST_F(KernelCacheMemory, GoesWithTheCache) {
  host.Reset();
  const long before = liveBlocks;
  {
    Quillon::KernelCache cache;
    for (std::uint64_t identity = 0; identity < 10; ++identity) {
      cache.Get("kernel", device, {.contextIdentity = identity});
    }
  }
  host.Reset();
  EXPECT_LE(liveBlocks, before + 2) << "the log's own two vectors";
}

}  // namespace
