#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "mapper/Result.h"

namespace RefHost {
class GPUDevice;
}

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// A GPU that plans map on. Shared by all plans that name it; it is let go with the last of them.
using Device = RefHost::GPUDevice;

/// What `IsDeviceName` takes.
inline constexpr const char* kDeviceSyntax = "cpu|gpu|opencl:N|cuda:N";

/// Whether a text is "cpu", "gpu", "opencl:N" or "cuda:N".
bool IsDeviceName(std::string_view text);

/// The device of such a name, made ready; null for "cpu". "gpu" is the first that runs the kernels,
/// GPUs before processors. `NoDevice` where there is none: another is never taken in its place. May
/// take seconds where kernels are built for the first time. Any thread.
Result<std::shared_ptr<Device>> OpenDevice(std::string_view name);

/// The name by which `OpenDevice` knows a device: "cpu" for null, else "opencl:0" and the like.
std::string DeviceName(const Device* device);

}  // namespace Mapper
}  // namespace Quillon
