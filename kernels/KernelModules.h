#pragma once

#include <span>
#include <string_view>

namespace kernels {

/// One module of kernels, as texts for the compilers of devices.
struct KernelModule {
  std::string_view name;
  /// OpenCL C 1.2, with every header it includes in place of its line.
  std::string_view openCl;
  /// PTX of each compiler that was there when this was built, the newest version first: what one
  /// driver or device cannot load, another text may serve.
  std::span<const std::string_view> ptx;
};

/// The module of this name, or null.
const KernelModule* FindKernelModule(std::string_view name);

}  // namespace kernels
