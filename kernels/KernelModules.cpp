#include "kernels/KernelModules.h"

#include <algorithm>
#include <array>

namespace kernels {

// Written by the build, one source each.
extern const KernelModule kToneMapMain;
extern const KernelModule kPixelConversion;

const KernelModule* FindKernelModule(std::string_view name) {
  static const std::array kModules = {&kToneMapMain, &kPixelConversion};
  const auto* found = std::find_if(kModules.begin(), kModules.end(),
                                   [&](const auto* module) { return module->name == name; });
  return found == kModules.end() ? nullptr : *found;
}

}  // namespace kernels
