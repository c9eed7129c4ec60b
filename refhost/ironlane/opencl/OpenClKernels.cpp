#include "refhost/ironlane/opencl/OpenClKernels.h"

#include <algorithm>

#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/opencl/OpenClProgram.h"
#include "refhost/ironlane/opencl/OpenClStatus.h"

namespace RefHost {

namespace {

/// Rows of what the device runs together, up to 256 work-items.
void ChooseGroup(const cl::Device& device, OpenClKernel& made) {
  constexpr std::size_t kMostItems = 256;
  const std::size_t most = std::clamp<std::size_t>(
      made.kernel.getWorkGroupInfo<CL_KERNEL_WORK_GROUP_SIZE>(device), 1, kMostItems);
  const auto together =
      made.kernel.getWorkGroupInfo<CL_KERNEL_PREFERRED_WORK_GROUP_SIZE_MULTIPLE>(device);
  const auto sizes = device.getInfo<CL_DEVICE_MAX_WORK_ITEM_SIZES>();
  made.groupX = std::clamp<std::size_t>(together, 1, std::min(most, sizes.at(0)));
  made.groupY = std::clamp<std::size_t>(most / made.groupX, 1, sizes.at(1));
}

}  // namespace

OpenClKernel* OpenClKernels::Find(std::string_view module, std::string_view kernel) {
  const Name name(module, kernel);
  if (OpenClKernel* known = Known(name)) return known;
  const std::lock_guard building(buildMutex_);
  if (OpenClKernel* known = Known(name)) return known;
  const cl::Program* program = ProgramOf(name.first);
  if (program == nullptr) return nullptr;
  cl_int status = CL_SUCCESS;
  OpenClKernel made{cl::Kernel(*program, name.second.c_str(), &status)};
  if (ResultOf(status, "finding kernel " + name.second) < 0) return nullptr;
  ChooseGroup(device_, made);
  const std::lock_guard lock(mutex_);
  return &kernels_.emplace(name, std::move(made)).first->second;
}

OpenClKernel* OpenClKernels::At(IL::KernelHandle handle) {
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(kernels_.begin(), kernels_.end(),
                                  [&](const auto& entry) { return &entry.second == handle; });
  return found == kernels_.end() ? nullptr : &found->second;
}

OpenClKernel* OpenClKernels::Known(const Name& name) {
  const std::lock_guard lock(mutex_);
  const auto known = kernels_.find(name);
  return known == kernels_.end() ? nullptr : &known->second;
}

const cl::Program* OpenClKernels::ProgramOf(const std::string& module) {
  const auto built = programs_.find(module);
  if (built != programs_.end()) return &built->second;
  const kernels::KernelModule* source = kernels::FindKernelModule(module);
  if (source == nullptr) {
    TraceMessage("OpenCL : there is no module " + module);
    return nullptr;
  }
  auto program = BuildOpenClProgram(context_, device_, info_, *source, cache_);
  if (!program.has_value()) return nullptr;
  return &programs_.emplace(module, *std::move(program)).first->second;
}

}  // namespace RefHost
