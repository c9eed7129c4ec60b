#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>

#include "base/KernelSignature.h"
#include "host/ironlane/Device.h"

namespace Quillon {

/// One kernel as it was loaded for each device. Any thread, without a lock: threads that ask at
/// the same time may each load the kernel, and none sees a handle without its identity.
class KernelCache {
 public:
  constexpr KernelCache() = default;

  /// The handle kept for the device. Loaded first where there is none yet or where the device's
  /// context identity is not the one that it was loaded for; what the load returns, null too, is
  /// then kept. An exception of the load leaves the cache as it was. Platform kinds beyond 0 to 4
  /// and ordinals beyond 0 to 3 are loaded anew at every call.
  IL::KernelHandle Get(std::string_view kernel, const std::shared_ptr<IL::Device>& device,
                       const IL::DeviceDescription& description);

 private:
  static constexpr std::size_t kPlatformKinds = 5;
  static constexpr std::size_t kOrdinals = 4;

  /// A load that is over. Never changed nor freed while its cell lives, so that readers need not
  /// hold it.
  struct Entry {
    std::uint64_t contextIdentity;
    IL::KernelHandle kernel;
    const Entry* older;
  };

  class Cell {
   public:
    constexpr Cell() = default;
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;
    ~Cell();

    /// The entry that counts, or null.
    const Entry* Current() const { return current_.load(std::memory_order_acquire); }
    void Publish(std::uint64_t contextIdentity, IL::KernelHandle kernel);

   private:
    const Entry* FindOrAdd(std::uint64_t contextIdentity, IL::KernelHandle kernel);

    std::atomic<const Entry*> current_{nullptr};
    std::atomic<const Entry*> entries_{nullptr};
  };

  std::array<std::array<Cell, kOrdinals>, kPlatformKinds> cells_{};
};

/// The handle of one of the engine's kernels from the process-wide caches.
IL::KernelHandle GetKernel(const KernelSignature& kernel, const std::shared_ptr<IL::Device>& device,
                           const IL::DeviceDescription& description);

}  // namespace Quillon
