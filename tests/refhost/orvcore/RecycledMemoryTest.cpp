#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "refhost/orvcore/RecycledMemory.h"
#include "refhost/orvcore/RecyclerStatistics.h"

namespace orvcore::allocator {
namespace {

constexpr std::size_t kBytes = 100'000;

std::size_t InUse() { return RefHost::GetRecyclerStatistics().inUse; }

TEST(OwnedRecycledMemory, HoldsOneBlockUntilItsEnd) {
  const std::size_t before = InUse();
  {
    const RecycledMemory memory(kBytes);
    ASSERT_NE(memory.Data(), nullptr);
    EXPECT_EQ(memory.Size(), kBytes);
    std::memset(memory.Data(), 1, memory.Size());
    EXPECT_GE(InUse(), before + kBytes);
  }
  EXPECT_EQ(InUse(), before);
}

TEST(OwnedRecycledMemory, MovesItsBlockOnAndKeepsNothing) {
  const std::size_t before = InUse();
  {
    RecycledMemory first(kBytes);
    std::byte* data = first.Data();
    const RecycledMemory second(std::move(first));
    EXPECT_EQ(second.Data(), data);
    EXPECT_EQ(second.Size(), kBytes);
    // NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move): its state is documented
    EXPECT_EQ(first.Data(), nullptr);
    EXPECT_EQ(first.Size(), 0U);
    // NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
  }
  EXPECT_EQ(InUse(), before);
}

TEST(OwnedRecycledMemory, GivesItsOwnBlockBackWhenAnotherMovesIn) {
  const std::size_t before = InUse();
  {
    RecycledMemory target(kBytes);
    RecycledMemory source(2 * kBytes);
    std::byte* data = source.Data();
    target = std::move(source);
    EXPECT_EQ(target.Data(), data);
    EXPECT_EQ(target.Size(), 2 * kBytes);
    EXPECT_LT(InUse(), before + 3 * kBytes);
  }
  EXPECT_EQ(InUse(), before);
}

TEST(OwnedRecycledMemory, IsNotCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<RecycledMemory>);
  EXPECT_FALSE(std::is_copy_assignable_v<RecycledMemory>);
}

}  // namespace
}  // namespace orvcore::allocator
