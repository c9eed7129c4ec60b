#pragma once

#include <cstddef>

namespace RefHost {

/// Blocks from this size on are kept for reuse; smaller ones go to the heap at once.
inline constexpr std::size_t kKeptBlockBytes = std::size_t{64} << 10U;

/// What is kept at most: the block kept longest goes back to the heap first.
inline constexpr std::size_t kMostKeptBytes = std::size_t{1} << 30U;
inline constexpr std::size_t kMostKeptBlocks = 64;

/// Bytes in blocks of `kKeptBlockBytes` and more, by the sizes of the blocks: up to an eighth
/// above what was asked for.
struct RecyclerStatistics {
  std::size_t inUse = 0;
  /// Largest `inUse` since the last `ResetRecyclerPeak`.
  std::size_t peak = 0;
  std::size_t kept = 0;
};

RecyclerStatistics GetRecyclerStatistics();

/// Makes the peak what is in use now. Any thread.
void ResetRecyclerPeak();

/// Gives all kept blocks back to the heap. Any thread.
void ReleaseKeptBlocks();

}  // namespace RefHost
