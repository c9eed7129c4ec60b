#include "kernels/KernelModules.h"

#include <algorithm>
#include <array>

namespace kernels {

// Written by the build, one source each.
extern const KernelModule kToneMapMain;
extern const KernelModule kPixelConversion;
extern const KernelModule kGamutFit;

const KernelModule* FindKernelModule(std::string_view name) {
  static const std::array kModules = {&kToneMapMain, &kPixelConversion, &kGamutFit};
  const auto* found = std::find_if(kModules.begin(), kModules.end(),
                                   [&](const auto* module) { return module->name == name; });
  return found == kModules.end() ? nullptr : *found;
}

}  // namespace kernels
