#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "refhost/ironlane/cuda/CudaApi.h"
#include "refhost/ironlane/cuda/CudaQueues.h"

namespace RefHost {

/// The memory of a context, which is current in every call, and who used it last: what one stream
/// does with it comes after what another was given before. Memory that was freed is kept and given
/// out again, by the driver's pool where it has one, else by size. Nothing here waits for work but
/// `GiveBackAll`, and an allocation for which the device has no memory left.
///
/// One thread at a time; a stream's use of memory and the work that it is for are one.
class CudaMemory {
 public:
  /// `hasPools`: what the driver says of the device.
  CudaMemory(const CudaApi& api, CudaDeviceId id, bool hasPools);

  CudaResult Allocate(std::size_t bytes, CudaQueue& queue, std::uint64_t& pointer);
  CudaResult Free(std::uint64_t pointer, CudaQueue& queue);

  /// Whether these bytes are within one piece of this memory, which begins at `pointer`.
  bool Holds(std::uint64_t pointer, std::size_t offset, std::size_t bytes) const;
  /// Work on the memory that the queue is given next comes after all that was given before.
  CudaResult Use(std::uint64_t pointer, CudaQueue& queue);

  CudaResult GiveBackAll();

 private:
  struct Block {
    std::size_t bytes = 0;
    CudaQueue* lastUser = nullptr;
  };
  struct FreeBlock {
    std::uint64_t pointer = 0;
    CudaQueue* lastUser = nullptr;
  };

  CudaResult WaitFor(CudaQueue* other, CudaQueue& queue) const;
  CudaResult TakeFromDevice(std::size_t bytes, std::uint64_t& pointer);
  CudaResult ReleaseFree();

  const CudaApi& api_;
  CudaMemoryPool pool_ = nullptr;
  std::uint64_t thresholdBefore_ = 0;
  std::map<std::uint64_t, Block> blocks_;
  /// Without a pool.
  std::multimap<std::size_t, FreeBlock> free_;
};

}  // namespace RefHost
