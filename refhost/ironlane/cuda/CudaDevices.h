#pragma once

#include <optional>

#include "refhost/ironlane/GPUDevice.h"
#include "refhost/ironlane/cuda/CudaApi.h"
#include "refhost/ironlane/cuda/CudaModules.h"

namespace RefHost {

/// What the driver says of a device.
struct CudaDescription {
  CudaDeviceId id = 0;
  DeviceInfo info;
  CudaTarget target;
  bool hasPools = false;
};

/// Of the device of an ordinal; nothing, and a message to the trace, where the driver gives none or
/// no name for it. What else it does not say is left out.
std::optional<CudaDescription> DescribeCudaDevice(const CudaApi& api, std::int32_t ordinal);

/// 0 where the driver does not answer.
std::int32_t CountCudaDevices(const CudaApi& api);

}  // namespace RefHost
