// There are no devices.

#include "host/ironlane/Device.h"

IL::KernelHandle IL::LoadKernel(const std::shared_ptr<Device>& /*device*/,
                                std::string_view /*module*/, std::string_view /*kernel*/) {
  return nullptr;
}
