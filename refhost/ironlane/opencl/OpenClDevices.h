#pragma once

#include <vector>

#include "refhost/ironlane/GPUDevice.h"
#include "refhost/ironlane/opencl/OpenCl.h"

namespace RefHost {

/// All devices that have a name, in the order of their ordinals.
std::vector<cl::Device> FindOpenClDevices();

DeviceInfo DescribeOpenClDevice(const cl::Device& device, std::int32_t ordinal);

}  // namespace RefHost
