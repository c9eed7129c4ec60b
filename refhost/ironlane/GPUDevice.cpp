#include "refhost/ironlane/GPUDevice.h"

#include <atomic>
#include <cstring>

namespace RefHost {

int GPUDevice::Upload(const void* from, std::uint64_t to, std::size_t bytes) {
  const auto* source = static_cast<const std::byte*>(from);
  return UploadRows(to, 1, bytes, [&](const RowRing& ring, std::size_t first, std::size_t last) {
    std::memcpy(ring.memory + first % ring.rows, source + first, last - first);
    return 0;
  });
}

int GPUDevice::Download(std::uint64_t from, void* to, std::size_t bytes) {
  auto* destination = static_cast<std::byte*>(to);
  return DownloadRows(
      from, 1, bytes, [&](const RowRing& ring, std::size_t first, std::size_t last) {
        std::memcpy(destination + first, ring.memory + first % ring.rows, last - first);
        return 0;
      });
}

std::uint64_t GPUDevice::NewContextIdentity() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

}  // namespace RefHost

namespace IL {

KernelHandle LoadKernel(const std::shared_ptr<Device>& device, std::string_view module,
                        std::string_view kernel) {
  const auto gpu = std::dynamic_pointer_cast<RefHost::GPUDevice>(device);
  return gpu == nullptr ? nullptr : gpu->LoadKernel(module, kernel);
}

}  // namespace IL
