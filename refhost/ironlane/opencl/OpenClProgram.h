#pragma once

#include <optional>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/BinaryCache.h"
#include "refhost/ironlane/GPUDevice.h"
#include "refhost/ironlane/opencl/OpenCl.h"

namespace RefHost {

/// A module compiled for the device, out of the cache where it is there. Nothing, and the
/// compiler's messages to the trace, when it does not compile.
std::optional<cl::Program> BuildOpenClProgram(const cl::Context& context, const cl::Device& device,
                                              const DeviceInfo& info,
                                              const kernels::KernelModule& module,
                                              const BinaryCache& cache);

}  // namespace RefHost
