#include "gpu/KernelArguments.h"

#include "base/ResultCodes.h"

namespace Quillon {

namespace {

float ValueOf(KernelFloat source, const SupportVector& params,
              const orvmediatypes::color::ToneMapControls& controls) {
  switch (source) {
    case KernelFloat::Peak:
      return controls.peak;
    case KernelFloat::PeakGain:
      return controls.peakGain;
    case KernelFloat::ColorPreservation:
      return controls.colorPreservation;
    default:
      return params[static_cast<std::size_t>(source)];
  }
}

}  // namespace

int SetKernelFloats(const KernelSignature& kernel, const SupportVector& params,
                    const orvmediatypes::color::ToneMapControls& controls,
                    KernelArguments& arguments) {
  if (params.size() < kernel.paramsRead) return kDegenerateParameters;
  for (std::size_t index = 0; index < kernel.floatCount; ++index) {
    arguments.floats[index] = ValueOf(kernel.floats[index], params, controls);
  }
  arguments.floatCount = static_cast<std::uint32_t>(kernel.floatCount);
  return kSuccess;
}

}  // namespace Quillon
