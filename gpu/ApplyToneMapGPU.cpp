#include "gpu/ApplyToneMapGPU.h"

#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "gpu/KernelTarget.h"
#include "host/chromant/Applicability.h"
#include "tonemap/Algorithms.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using PX::ToneMappingUtils::GetLocalizedToneMappingMethodName;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

/// The settings are the working copy that the parameters were computed with.
int RunToneMapKernel(const KernelTarget& target, const ToneMapSettings& settings,
                     const SupportVector& params) {
  const ToneCurveFacts* curve = FindToneCurve(settings.algorithmType);
  if (curve == nullptr) {
    TraceFailure([&](auto& message) {
      message << "ApplyToneMapGPU : (Not implemented) Tone Map Method Algorithm Type : "
              << GetLocalizedToneMappingMethodName(settings.algorithmType, 1);
    });
    return kNotSupported;
  }

  PreparedKernel kernel;
  int result = PrepareKernel(target, curve->kernel, params, settings.controls, kernel);
  if (result < 0) return result;
  result = RunKernel(target, kernel);
  if (result < 0) {
    TraceFailure([&](auto& message) {
      message << "ApplyToneMapGPU : Tone Mapping Kernel failed. Tone Mapping Method : "
              << GetLocalizedToneMappingMethodName(settings.algorithmType, 1);
    });
  }
  return result;
}

}  // namespace

int ApplyToneMapGPU(const PX::VideoFrameRef& working, const ToneMapSettings& settings) {
  if (!CHR::IsToneMappingApplicable(settings)) return kSuccess;

  KernelTarget target;
  const int result = MakeKernelTarget(working, DeviceOf(working), target);
  if (result < 0) return result;

  ToneMapSettings workingSettings = settings;
  SupportVector params;
  GetToneMappingSupportParams(workingSettings, params);
  return RunToneMapKernel(target, workingSettings, params);
}

}  // namespace Quillon
