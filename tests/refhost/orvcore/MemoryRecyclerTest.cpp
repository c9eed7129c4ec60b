#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "host/orvcore/Allocator.h"
#include "refhost/orvcore/RecycledMemory.h"
#include "refhost/orvcore/RecyclerStatistics.h"

using orvcore::allocator::MemoryRecycler;
using orvcore::allocator::RecycledMemory;
using RefHost::GetRecyclerStatistics;
using RefHost::kKeptBlockBytes;
using RefHost::kMostKeptBlocks;
using RefHost::kMostKeptBytes;
using RefHost::ReleaseKeptBlocks;

namespace {

constexpr std::size_t kFrameBytes = std::size_t{3840} * 2160 * 16;

class Recycler : public testing::Test {
 protected:
  Recycler() { ReleaseKeptBlocks(); }
  ~Recycler() override { ReleaseKeptBlocks(); }
};

bool IsAligned(const void* block) { return reinterpret_cast<std::uintptr_t>(block) % 64 == 0; }

TEST_F(Recycler, AlignsBlocksOfEverySize) {
  for (const std::size_t bytes :
       {std::size_t{0}, std::size_t{1}, std::size_t{63}, std::size_t{1000}, kKeptBlockBytes - 1,
        kKeptBlockBytes, kKeptBlockBytes + 1, std::size_t{10'000'019}}) {
    const RecycledMemory memory(bytes);
    EXPECT_TRUE(IsAligned(memory.Data())) << bytes;
    if (bytes > 0) std::memset(memory.Data(), 0xAB, bytes);
  }
}

TEST_F(Recycler, GivesAFrameSizedBlockOutAgain) {
  void* first = MemoryRecycler::Allocate(kFrameBytes);
  MemoryRecycler::Recycle(first, kFrameBytes);
  void* second = MemoryRecycler::Allocate(kFrameBytes);
  EXPECT_EQ(first, second);
  MemoryRecycler::Recycle(second, kFrameBytes);
}

TEST_F(Recycler, ReusesABlockForASizeOfTheSameClass) {
  constexpr std::size_t kSlightlyLess = kFrameBytes - 100;
  void* first = MemoryRecycler::Allocate(kFrameBytes);
  MemoryRecycler::Recycle(first, kFrameBytes);
  void* second = MemoryRecycler::Allocate(kSlightlyLess);
  EXPECT_EQ(first, second);
  MemoryRecycler::Recycle(second, kSlightlyLess);
}

TEST_F(Recycler, NeverGivesOutABlockThatIsInUse) {
  const RecycledMemory first(kFrameBytes);
  const RecycledMemory second(kFrameBytes);
  EXPECT_NE(first.Data(), second.Data());
}

TEST_F(Recycler, ServesNoLargerClassFromAKeptBlock) {
  void* first = MemoryRecycler::Allocate(kKeptBlockBytes);
  MemoryRecycler::Recycle(first, kKeptBlockBytes);
  const RecycledMemory larger(kKeptBlockBytes + 1);
  EXPECT_NE(larger.Data(), first);
  EXPECT_EQ(GetRecyclerStatistics().kept, kKeptBlockBytes);
}

TEST_F(Recycler, KeepsNoSmallBlocks) {
  { const RecycledMemory small(kKeptBlockBytes - 1); }
  EXPECT_EQ(GetRecyclerStatistics().kept, 0U);
  { const RecycledMemory large(kKeptBlockBytes); }
  EXPECT_EQ(GetRecyclerStatistics().kept, kKeptBlockBytes);
}

TEST_F(Recycler, BoundsTheBytesThatItKeeps) {
  constexpr std::size_t kBlock = kMostKeptBytes / 4;
  {
    std::vector<RecycledMemory> blocks;
    blocks.reserve(6);
    for (int i = 0; i < 6; ++i) blocks.emplace_back(kBlock);
  }
  EXPECT_EQ(GetRecyclerStatistics().kept, kMostKeptBytes);
}

TEST_F(Recycler, KeepsNothingLargerThanAllThatItMayKeep) {
  { const RecycledMemory huge(kMostKeptBytes + 1); }
  EXPECT_EQ(GetRecyclerStatistics().kept, 0U);
}

TEST_F(Recycler, BoundsTheNumberOfBlocksAndLetsTheOldestGo) {
  std::vector<void*> blocks(kMostKeptBlocks + 1);
  for (void*& block : blocks) block = MemoryRecycler::Allocate(kKeptBlockBytes);
  constexpr std::size_t kOtherSize = 2 * kKeptBlockBytes;
  void* oldest = MemoryRecycler::Allocate(kOtherSize);
  MemoryRecycler::Recycle(oldest, kOtherSize);
  for (void* block : blocks) MemoryRecycler::Recycle(block, kKeptBlockBytes);
  EXPECT_EQ(GetRecyclerStatistics().kept, kMostKeptBlocks * kKeptBlockBytes);
}

TEST_F(Recycler, CountsWhatIsInUseAndItsPeak) {
  const auto before = GetRecyclerStatistics().inUse;
  RefHost::ResetRecyclerPeak();
  {
    const RecycledMemory one(kKeptBlockBytes);
    const RecycledMemory two(2 * kKeptBlockBytes);
    EXPECT_EQ(GetRecyclerStatistics().inUse - before, 3 * kKeptBlockBytes);
  }
  EXPECT_EQ(GetRecyclerStatistics().inUse, before);
  EXPECT_EQ(GetRecyclerStatistics().peak - before, 3 * kKeptBlockBytes);
}

TEST_F(Recycler, RefusesSizesThatNothingHolds) {
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  const auto before = GetRecyclerStatistics().inUse;
  for (const std::size_t bytes : {kMost, kMost - 63, kMost / 2}) {
    EXPECT_THROW(MemoryRecycler::Allocate(bytes), std::bad_alloc) << bytes;
  }
  EXPECT_EQ(GetRecyclerStatistics().inUse, before);
}

TEST_F(Recycler, RefusesContainersWhoseByteCountOverflows) {
  orvcore::allocator::STLAllocator<double> allocator;
  constexpr std::size_t kWraps = std::numeric_limits<std::size_t>::max() / sizeof(double) + 2;
  EXPECT_THROW(allocator.allocate(kWraps), std::bad_alloc);
}

TEST_F(Recycler, TakesNullBack) {
  MemoryRecycler::Recycle(nullptr, 0);
  MemoryRecycler::Recycle(nullptr, kFrameBytes);
  EXPECT_EQ(GetRecyclerStatistics().kept, 0U);
}

TEST_F(Recycler, ServesStandardContainers) {
  std::vector<float, orvcore::allocator::STLAllocator<float>> numbers(100'000, 1.5F);
  numbers.insert(numbers.end(), 100'000, 2.5F);
  EXPECT_TRUE(IsAligned(numbers.data()));
  EXPECT_EQ(numbers.front(), 1.5F);
  EXPECT_EQ(numbers.back(), 2.5F);
}

TEST_F(Recycler, ServesManyThreads) {
  const auto work = [](unsigned char mark) {
    for (int i = 0; i < 300; ++i) {
      const RecycledMemory memory(kKeptBlockBytes + static_cast<std::size_t>(i % 7) * 20'000);
      std::fill_n(memory.Data(), memory.Size(), std::byte{mark});
      EXPECT_EQ(std::to_integer<unsigned char>(memory.Data()[memory.Size() - 1]), mark);
    }
  };
  const auto before = GetRecyclerStatistics().inUse;
  std::thread first(work, 1);
  std::thread second(work, 2);
  first.join();
  second.join();
  EXPECT_EQ(GetRecyclerStatistics().inUse, before);
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(Recycler, HidesNoUseOfABlockThatWasGivenBack) {
  auto* block = static_cast<volatile char*>(MemoryRecycler::Allocate(kFrameBytes));
  MemoryRecycler::Recycle(const_cast<char*>(block), kFrameBytes);
  EXPECT_DEATH(block[0] = 1, "use-after-poison");
}

TEST_F(Recycler, HidesNoUseBeyondTheSizeAskedFor) {
  constexpr std::size_t kBytes = kKeptBlockBytes + 8;
  auto* block = static_cast<volatile char*>(MemoryRecycler::Allocate(kBytes));
  EXPECT_DEATH(block[kBytes] = 1, "use-after-poison");
  MemoryRecycler::Recycle(const_cast<char*>(block), kBytes);
}
#endif

}  // namespace
