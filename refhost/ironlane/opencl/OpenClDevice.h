#pragma once

#include <memory>
#include <vector>

#include "refhost/ironlane/GPUDevice.h"

namespace RefHost {

/// All devices of all vendors whose drivers the loader finds.
std::vector<DeviceInfo> ListOpenClDevices();

/// Null, and a message to the trace, when there is no such device or it cannot be used. The device
/// pointers that it gives are those of OpenCL's memory objects.
std::shared_ptr<GPUDevice> OpenOpenClDevice(std::int32_t ordinal);

}  // namespace RefHost
