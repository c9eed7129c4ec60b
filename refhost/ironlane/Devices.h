#pragma once

#include <memory>
#include <string>
#include <vector>

#include "refhost/ironlane/GpuDevice.h"

namespace IL {

/// The name of a device, "opencl:0" for example.
std::string DeviceName(std::int32_t platformKind, std::int32_t ordinal);

/// All devices, those of CUDA first. Those that cannot run kernels are among them and say why.
std::vector<DeviceInfo> ListDevices();

/// A device made ready for work; one that is in use already is shared. Null when there is none of
/// this kind and ordinal, or it cannot be used; the trace then says why.
std::shared_ptr<GpuDevice> OpenDevice(std::int32_t platformKind, std::int32_t ordinal);

/// Whether kernels for CUDA are within this library; without them CUDA devices cannot be used.
bool IsBuiltForCuda();

}  // namespace IL
