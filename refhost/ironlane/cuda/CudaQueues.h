#pragma once

#include <array>
#include <mutex>

#include "refhost/ironlane/cuda/CudaApi.h"

namespace RefHost {

/// A stream, and an event for others to wait for what it was given.
struct CudaQueue {
  CudaStream stream = nullptr;
  CudaEvent event = nullptr;
};

/// The streams of a context, which is current in every call: a thread always has the same one, and
/// different threads different ones, up to their number. Made when first asked for.
class CudaQueues {
 public:
  explicit CudaQueues(const CudaApi& api) : api_(api) {}

  /// The calling thread's.
  CudaResult Mine(CudaQueue*& queue);
  /// Waits for the work of all; the first failure.
  CudaResult WaitForAll();
  /// The first failure; all that can be are destroyed.
  CudaResult DestroyAll();

 private:
  static constexpr std::size_t kCount = 16;

  const CudaApi& api_;
  std::mutex mutex_;
  std::array<CudaQueue, kCount> queues_;
};

}  // namespace RefHost
