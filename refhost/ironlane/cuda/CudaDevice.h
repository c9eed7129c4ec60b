#pragma once

#include <memory>
#include <vector>

#include "refhost/ironlane/GPUDevice.h"

namespace RefHost {

/// All devices of NVIDIA's driver; none where there is no driver.
std::vector<DeviceInfo> ListCudaDevices();

/// Null, and a message to the trace, when there is no such device or it cannot be used. Works in
/// the device's primary context, which is current during calls alone, and is reset first where an
/// earlier failure ended it.
std::shared_ptr<GPUDevice> OpenCudaDevice(std::int32_t ordinal);

}  // namespace RefHost
