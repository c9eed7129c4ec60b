#include "tests/host/Recycler.h"

#include <new>

#include "host/orvcore/Allocator.h"

namespace scripted {

namespace {
constexpr std::align_val_t kBlockAlignment{64};
}  // namespace

Recycler& Recycler::Instance() {
  static Recycler recycler;
  return recycler;
}

void* Recycler::Allocate(std::size_t bytes) {
  const std::scoped_lock lock(mutex_);
  if (++allocations_ == failAt_) throw std::bad_alloc();
  void* block = ::operator new(bytes, kBlockAlignment);
  blocks_[block] = bytes;
  bytes_ += static_cast<long>(bytes);
  return block;
}

void Recycler::Recycle(void* block, std::size_t bytes) noexcept {
  const std::scoped_lock lock(mutex_);
  const auto found = blocks_.find(block);
  if (found == blocks_.end() || found->second != bytes) {
    ++faults_;
    return;
  }
  bytes_ -= static_cast<long>(bytes);
  blocks_.erase(found);
  ::operator delete(block, kBlockAlignment);
}

void Recycler::FailAllocation(int nth) {
  const std::scoped_lock lock(mutex_);
  allocations_ = 0;
  failAt_ = nth;
}

int Recycler::Allocations() const {
  const std::scoped_lock lock(mutex_);
  return allocations_;
}

long Recycler::Blocks() const {
  const std::scoped_lock lock(mutex_);
  return static_cast<long>(blocks_.size());
}

long Recycler::Bytes() const {
  const std::scoped_lock lock(mutex_);
  return bytes_;
}

int Recycler::Faults() const {
  const std::scoped_lock lock(mutex_);
  return faults_;
}

}  // namespace scripted

namespace orvcore::allocator {

void* MemoryRecycler::Allocate(std::size_t bytes) {
  return scripted::Recycler::Instance().Allocate(bytes);
}

void MemoryRecycler::Recycle(void* block, std::size_t bytes) noexcept {
  scripted::Recycler::Instance().Recycle(block, bytes);
}

}  // namespace orvcore::allocator
