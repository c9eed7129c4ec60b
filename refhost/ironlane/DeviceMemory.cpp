#include "refhost/ironlane/DeviceMemory.h"

namespace RefHost {

int DeviceMemory::Allocate(const std::shared_ptr<GPUDevice>& device, std::size_t bytes,
                           std::unique_ptr<DeviceMemory>& memory) {
  std::uint64_t pointer = 0;
  const int result = device->Allocate(bytes, pointer);
  if (result < 0) return result;
  memory = std::make_unique<DeviceMemory>(device, pointer);
  return 0;
}

}  // namespace RefHost
