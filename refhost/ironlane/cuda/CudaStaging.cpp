#include "refhost/ironlane/cuda/CudaStaging.h"

#include <algorithm>
#include <utility>

namespace RefHost {

CudaResult CudaStaging::Take(std::size_t bytes, CudaStage& stage) {
  {
    const std::lock_guard lock(mutex_);
    const auto fits = std::find_if(idle_.begin(), idle_.end(),
                                   [bytes](const CudaStage& idle) { return idle.bytes >= bytes; });
    // One that is too small makes room for its successor.
    const auto taken = fits == idle_.end() && !idle_.empty() ? idle_.begin() : fits;
    if (taken != idle_.end()) {
      stage = std::move(*taken);
      idle_.erase(taken);
    }
  }
  if (stage.bytes >= bytes) return 0;
  if (const CudaResult result = Free(stage); result != 0) return result;
  stage = {};
  const CudaResult result = Make(bytes, stage);
  if (result != 0) {
    Free(stage);
    stage = {};
  }
  return result;
}

void CudaStaging::Return(CudaStage stage) {
  const std::lock_guard lock(mutex_);
  idle_.push_back(std::move(stage));
}

CudaResult CudaStaging::FreeAll() {
  CudaResult first = 0;
  for (const CudaStage& stage : idle_) {
    const CudaResult result = Free(stage);
    if (first == 0) first = result;
  }
  idle_.clear();
  return first;
}

CudaResult CudaStaging::Make(std::size_t bytes, CudaStage& stage) const {
  constexpr std::size_t kPage = 4096;
  constexpr unsigned kForAllContexts = 1;
  constexpr unsigned kWithoutTimes = 2;
  // Whole pages, which belong to this stage alone.
  const std::size_t pages = (bytes + kPage - 1) / kPage * kPage;
  std::size_t space = pages + kPage;
  auto owner = std::make_unique_for_overwrite<std::byte[]>(space);
  void* memory = owner.get();
  std::align(kPage, pages, memory, space);
  if (const CudaResult result = api_.MemHostRegister(memory, pages, kForAllContexts); result != 0) {
    return result;
  }
  stage.owner = std::move(owner);
  stage.memory = memory;
  stage.bytes = pages;
  for (CudaEvent& event : stage.events) {
    if (const CudaResult result = api_.EventCreate(&event, kWithoutTimes); result != 0) {
      return result;
    }
  }
  return 0;
}

CudaResult CudaStaging::Free(const CudaStage& stage) const {
  CudaResult first = 0;
  for (const CudaEvent event : stage.events) {
    const CudaResult result = event == nullptr ? 0 : api_.EventDestroy(event);
    if (first == 0) first = result;
  }
  const CudaResult result = stage.memory == nullptr ? 0 : api_.MemHostUnregister(stage.memory);
  return first != 0 ? first : result;
}

}  // namespace RefHost
