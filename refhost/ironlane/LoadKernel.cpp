#include "refhost/ironlane/GPUDevice.h"

namespace IL {

KernelHandle LoadKernel(const std::shared_ptr<Device>& device, std::string_view module,
                        std::string_view kernel) {
  const auto gpu = std::dynamic_pointer_cast<RefHost::GPUDevice>(device);
  return gpu == nullptr ? nullptr : gpu->LoadKernel(module, kernel);
}

}  // namespace IL
