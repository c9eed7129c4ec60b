#include "refhost/ironlane/cuda/CudaQueues.h"

#include <atomic>

namespace RefHost {

namespace {

/// Numbers the threads of the process as they first ask.
std::size_t ThreadNumber() {
  static std::atomic<std::size_t> last{0};
  thread_local const std::size_t number = last++;
  return number;
}

}  // namespace

CudaResult CudaQueues::Mine(CudaQueue*& queue) {
  constexpr unsigned kNonBlocking = 1;
  constexpr unsigned kWithoutTimes = 2;
  CudaQueue& mine = queues_[ThreadNumber() % kCount];
  const std::lock_guard lock(mutex_);
  CudaResult result = 0;
  if (mine.stream == nullptr) result = api_.StreamCreate(&mine.stream, kNonBlocking);
  if (result == 0 && mine.event == nullptr) result = api_.EventCreate(&mine.event, kWithoutTimes);
  queue = &mine;
  return result;
}

CudaResult CudaQueues::WaitForAll() {
  CudaResult first = 0;
  for (const CudaQueue& queue : queues_) {
    CudaStream stream = nullptr;
    {
      const std::lock_guard lock(mutex_);
      stream = queue.stream;
    }
    const CudaResult result = stream == nullptr ? 0 : api_.StreamSynchronize(stream);
    if (first == 0) first = result;
  }
  return first;
}

CudaResult CudaQueues::DestroyAll() {
  CudaResult first = 0;
  for (CudaQueue& queue : queues_) {
    for (const CudaResult result :
         {queue.event == nullptr ? 0 : api_.EventDestroy(queue.event),
          queue.stream == nullptr ? 0 : api_.StreamDestroy(queue.stream)}) {
      if (first == 0) first = result;
    }
    queue = {};
  }
  return first;
}

}  // namespace RefHost
