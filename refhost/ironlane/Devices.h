#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "refhost/ironlane/GPUDevice.h"

namespace RefHost {

/// The name of a device, "opencl:0" for example.
std::string DeviceName(std::int32_t platformKind, std::int32_t ordinal);

/// Which device such a name names.
struct DeviceKey {
  std::int32_t platformKind = 0;
  std::int32_t ordinal = 0;
};
/// Nothing for a text that `DeviceName` never gives. Whether there is such a device it does not
/// say.
std::optional<DeviceKey> ParseDeviceName(std::string_view name);

/// All devices, those of CUDA first. Those that cannot run kernels are among them and say why.
std::vector<DeviceInfo> ListDevices();

/// A device made ready for work; one that is in use already is shared. Null when there is none of
/// this kind and ordinal, or it cannot be used; the trace then says why.
std::shared_ptr<GPUDevice> OpenDevice(std::int32_t platformKind, std::int32_t ordinal);

/// In the order in which one is chosen: GPUs before processors, else as they are.
std::vector<DeviceInfo> InOrderOfChoice(std::vector<DeviceInfo> devices);

/// The first device in that order that runs the kernels; null when none does, and the trace then
/// says why of each.
std::shared_ptr<GPUDevice> OpenFirstDevice();

/// Whether the kernels build on a device; the trace says why not.
bool BuildsKernels(GPUDevice& device);

/// Whether kernels for CUDA are within this library; without them CUDA devices cannot be used.
bool IsBuiltForCuda();

}  // namespace RefHost
