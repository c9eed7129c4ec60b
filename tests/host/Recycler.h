#pragma once

#include <cstddef>
#include <map>
#include <mutex>

namespace scripted {

/// The blocks behind `orvcore::allocator::MemoryRecycler`. Any thread.
class Recycler {
 public:
  static Recycler& Instance();

  /// Throws std::bad_alloc where a test asked for it.
  void* Allocate(std::size_t bytes);
  void Recycle(void* block, std::size_t bytes) noexcept;

  /// Lets the n-th allocation from now on fail; 0 lets none fail.
  void FailAllocation(int nth);
  /// Allocations since `FailAllocation` was last called.
  int Allocations() const;

  long Blocks() const;
  long Bytes() const;
  /// Blocks given back that were never given out, or with another size.
  int Faults() const;

 private:
  mutable std::mutex mutex_;
  std::map<void*, std::size_t> blocks_;
  long bytes_ = 0;
  int allocations_ = 0;
  int failAt_ = 0;
  int faults_ = 0;
};

}  // namespace scripted
