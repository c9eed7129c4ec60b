#include <cstddef>

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "host/orvcore/Allocator.h"
#include "refhost/orvcore/RecyclerStatistics.h"

namespace orvcore::allocator {
namespace {

constexpr std::size_t kFrameBytes = std::size_t{3840} * 2160 * 4 * sizeof(float);

/// Minor page faults while a frame is allocated, written once per page and recycled.
long FaultsOfOneFrame(std::size_t pageBytes) {
  rusage before{};
  rusage after{};
  getrusage(RUSAGE_SELF, &before);
  auto* frame = static_cast<volatile std::byte*>(MemoryRecycler::Allocate(kFrameBytes));
  for (std::size_t i = 0; i < kFrameBytes; i += pageBytes) frame[i] = std::byte{1};
  MemoryRecycler::Recycle(const_cast<std::byte*>(frame), kFrameBytes);
  getrusage(RUSAGE_SELF, &after);
  return after.ru_minflt - before.ru_minflt;
}

TEST(RecyclerPageFaults, ASecondLargeFrameFindsItsPagesInPlace) {
  // With huge pages a fresh frame would take too few faults to tell it from a kept one.
  ASSERT_EQ(prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0), 0);
  RefHost::ReleaseKeptBlocks();
  const auto pageBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const auto pages = static_cast<long>(kFrameBytes / pageBytes);
  EXPECT_GT(FaultsOfOneFrame(pageBytes), pages / 2);
  EXPECT_LT(FaultsOfOneFrame(pageBytes), pages / 20);
  RefHost::ReleaseKeptBlocks();
  EXPECT_EQ(prctl(PR_SET_THP_DISABLE, 0, 0, 0, 0), 0);
}

}  // namespace
}  // namespace orvcore::allocator
