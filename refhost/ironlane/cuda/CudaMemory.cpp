#include "refhost/ironlane/cuda/CudaMemory.h"

#include <limits>

namespace RefHost {

namespace {

// Of the driver's enumeration of a pool's attributes: bytes that it keeps while nobody uses them.
constexpr int kReleaseThreshold = 4;

}  // namespace

CudaMemory::CudaMemory(const CudaApi& api, CudaDeviceId id, bool hasPools) : api_(api) {
  const bool isUsable = hasPools && api.MemAllocAsync != nullptr && api.MemFreeAsync != nullptr &&
                        api.DeviceGetDefaultMemPool != nullptr &&
                        api.MemPoolGetAttribute != nullptr && api.MemPoolSetAttribute != nullptr &&
                        api.MemPoolTrimTo != nullptr;
  CudaMemoryPool pool = nullptr;
  if (!isUsable || api.Check(api.DeviceGetDefaultMemPool(&pool, id), "the default pool") < 0) {
    return;
  }
  std::uint64_t keep = std::numeric_limits<std::uint64_t>::max();
  if (api.Check(api.MemPoolGetAttribute(pool, kReleaseThreshold, &thresholdBefore_),
                "cuMemPoolGetAttribute") == 0 &&
      api.Check(api.MemPoolSetAttribute(pool, kReleaseThreshold, &keep), "cuMemPoolSetAttribute") ==
          0) {
    pool_ = pool;
  }
}

CudaResult CudaMemory::Allocate(std::size_t bytes, CudaQueue& queue, std::uint64_t& pointer) {
  std::uint64_t made = 0;
  CudaQueue* lastUser = nullptr;
  if (pool_ != nullptr) {
    if (const CudaResult result = api_.MemAllocAsync(&made, bytes, queue.stream); result != 0) {
      return result;
    }
    lastUser = &queue;
  } else if (const auto kept = free_.find(bytes); kept != free_.end()) {
    made = kept->second.pointer;
    lastUser = kept->second.lastUser;
    free_.erase(kept);
  } else if (const CudaResult result = TakeFromDevice(bytes, made); result != 0) {
    return result;
  }
  blocks_[made] = {bytes, lastUser};
  pointer = made;
  return 0;
}

CudaResult CudaMemory::Free(std::uint64_t pointer, CudaQueue& queue) {
  const auto found = blocks_.find(pointer);
  if (found == blocks_.end()) return kCudaInvalidValue;
  const Block block = found->second;
  blocks_.erase(found);
  if (pool_ == nullptr) {
    free_.emplace(block.bytes, FreeBlock{pointer, block.lastUser});
    return 0;
  }
  const CudaResult waited = WaitFor(block.lastUser, queue);
  const CudaResult freed = api_.MemFreeAsync(pointer, queue.stream);
  return waited != 0 ? waited : freed;
}

bool CudaMemory::Holds(std::uint64_t pointer, std::size_t offset, std::size_t bytes) const {
  const auto found = blocks_.find(pointer);
  return found != blocks_.end() && offset <= found->second.bytes &&
         bytes <= found->second.bytes - offset;
}

CudaResult CudaMemory::Use(std::uint64_t pointer, CudaQueue& queue) {
  Block& block = blocks_.at(pointer);
  const CudaResult result = WaitFor(block.lastUser, queue);
  if (result == 0) block.lastUser = &queue;
  return result;
}

CudaResult CudaMemory::GiveBackAll() {
  CudaResult first = 0;
  for (const auto& [pointer, block] : blocks_) free_.emplace(block.bytes, FreeBlock{pointer});
  blocks_.clear();
  if (pool_ == nullptr) return ReleaseFree();
  for (const auto& [bytes, block] : free_) {
    // Takes pooled memory too, once all work on it is done.
    const CudaResult result = api_.MemFree(block.pointer);
    if (first == 0) first = result;
  }
  free_.clear();
  for (const CudaResult result :
       {api_.MemPoolSetAttribute(pool_, kReleaseThreshold, &thresholdBefore_),
        api_.MemPoolTrimTo(pool_, 0)}) {
    if (first == 0) first = result;
  }
  return first;
}

CudaResult CudaMemory::WaitFor(CudaQueue* other, CudaQueue& queue) const {
  if (other == nullptr || other == &queue) return 0;
  const CudaResult result = api_.EventRecord(other->event, other->stream);
  return result != 0 ? result : api_.StreamWaitEvent(queue.stream, other->event, 0);
}

CudaResult CudaMemory::TakeFromDevice(std::size_t bytes, std::uint64_t& pointer) {
  const CudaResult result = api_.MemAlloc(&pointer, bytes);
  if (result != kCudaOutOfMemory || free_.empty()) return result;
  const CudaResult released = ReleaseFree();
  return released != 0 ? released : api_.MemAlloc(&pointer, bytes);
}

CudaResult CudaMemory::ReleaseFree() {
  CudaResult first = 0;
  for (const auto& [bytes, block] : free_) {
    const CudaResult result = api_.MemFree(block.pointer);
    if (first == 0) first = result;
  }
  free_.clear();
  return first;
}

}  // namespace RefHost
