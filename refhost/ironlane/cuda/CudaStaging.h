#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "refhost/ironlane/RowTransfer.h"
#include "refhost/ironlane/cuda/CudaApi.h"

namespace RefHost {

/// Memory that devices copy from and to by themselves, and an event a piece. It is the process's
/// own: it stays when the context goes.
struct CudaStage {
  std::unique_ptr<std::byte[]> owner;
  void* memory = nullptr;
  std::size_t bytes = 0;
  std::array<CudaEvent, RowPieces::kMostSlots> events{};
};

/// The stages of a context, which is current in every call, kept for the next transfer.
class CudaStaging {
 public:
  explicit CudaStaging(const CudaApi& api) : api_(api) {}

  /// A stage of at least these bytes, for the caller alone until it is returned.
  CudaResult Take(std::size_t bytes, CudaStage& stage);
  void Return(CudaStage stage);
  /// The first failure; all that can be are freed.
  CudaResult FreeAll();

 private:
  CudaResult Make(std::size_t bytes, CudaStage& stage) const;
  CudaResult Free(const CudaStage& stage) const;

  const CudaApi& api_;
  std::mutex mutex_;
  std::vector<CudaStage> idle_;
};

}  // namespace RefHost
