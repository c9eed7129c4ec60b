#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "host/ironlane/Device.h"
#include "refhost/ironlane/BinaryCache.h"
#include "refhost/ironlane/GPUDevice.h"
#include "refhost/ironlane/opencl/OpenCl.h"

namespace RefHost {

/// A kernel, and the work-group that it is launched with where the launch leaves it to the device.
struct OpenClKernel {
  cl::Kernel kernel;
  std::size_t groupX = 1;
  std::size_t groupY = 1;
};

/// The programs and kernels of one context. Any thread may call; who looks for a kernel that is
/// there waits for nobody who builds.
class OpenClKernels {
 public:
  OpenClKernels(cl::Context context, cl::Device device, DeviceInfo info)
      : context_(std::move(context)), device_(std::move(device)), info_(std::move(info)) {}

  /// Null, and a message to the trace, when there is no such kernel or its module does not build.
  OpenClKernel* Find(std::string_view module, std::string_view kernel);
  /// The kernel behind a handle that `Find` gave, or null.
  OpenClKernel* At(IL::KernelHandle handle);

 private:
  using Name = std::pair<std::string, std::string>;

  OpenClKernel* Known(const Name& name);
  /// Null when the module is not known or does not build.
  const cl::Program* ProgramOf(const std::string& module);

  const cl::Context context_;
  const cl::Device device_;
  const DeviceInfo info_;
  const BinaryCache cache_;
  std::mutex buildMutex_;  ///< taken before the other
  std::mutex mutex_;
  std::map<std::string, cl::Program> programs_;  ///< by the first mutex
  std::map<Name, OpenClKernel> kernels_;         ///< by the second
};

}  // namespace RefHost
