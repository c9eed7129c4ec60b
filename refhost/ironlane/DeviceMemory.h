#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "refhost/ironlane/GPUDevice.h"

namespace RefHost {

/// Memory of a device, which it keeps alive, freed with this object.
class DeviceMemory {
 public:
  /// Takes over memory that the device gave.
  DeviceMemory(std::shared_ptr<GPUDevice> device, std::uint64_t pointer)
      : device_(std::move(device)), pointer_(pointer) {}

  /// 0, or a negative code and `memory` as it was.
  static int Allocate(const std::shared_ptr<GPUDevice>& device, std::size_t bytes,
                      std::unique_ptr<DeviceMemory>& memory);

  DeviceMemory(const DeviceMemory&) = delete;
  DeviceMemory& operator=(const DeviceMemory&) = delete;
  ~DeviceMemory() { device_->Free(pointer_); }

  const std::shared_ptr<GPUDevice>& Device() const { return device_; }
  std::uint64_t Pointer() const { return pointer_; }

 private:
  std::shared_ptr<GPUDevice> device_;
  std::uint64_t pointer_;
};

}  // namespace RefHost
