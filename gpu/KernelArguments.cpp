#include "gpu/KernelArguments.h"

#include "base/ResultCodes.h"

namespace Quillon {

namespace {

float ValueOf(const KernelFloat& source, const SupportVector& params,
              const orvmediatypes::color::ToneMapControls& controls) {
  if (!source.control) return params[source.entry];
  switch (*source.control) {
    case KernelControl::Peak:
      return controls.peak;
    case KernelControl::PeakGain:
      return controls.peakGain;
    case KernelControl::ColorPreservation:
      return controls.colorPreservation;
  }
  return 0.0F;
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
