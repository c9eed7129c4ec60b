#include "gpu/ApplyGamutMappingGPU.h"

#include "base/CopyQuality.h"
#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "base/WorkingColorManagement.h"
#include "cpu/GamutCompression.h"
#include "gpu/ApplyToneMapGPU.h"
#include "gpu/LinearizeFrame.h"
#include "host/chromant/Applicability.h"
#include "host/kestrel/FrameManipulators.h"

namespace Quillon {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;
using PX::GamutMappingUtils::GetGamutCompressionMethodName;

namespace {

int CopyUnmapped(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination) {
  if (source.Object() == destination.Object()) return kSuccess;
  // Deliberate: default colour management, whatever the record's version.
  const int result = KS::GPUFrameManipulators::CopyFrame(source, destination, kCopyQuality,
                                                         ColorManagementSettings());
  if (result < 0) {
    TraceFailure(
        [](auto& message) { message << "ApplyGamutMappingGPU : No operation Copy frame failed"; });
  }
  return result;
}

bool HasNothingToCompress(GamutCompressionAlgorithmType algorithmType,
                          const SupportVector& params) {
  return algorithmType == GamutCompressionAlgorithmType::Reinhard && !params.empty() &&
         !GamutCompressionReinhard::HasLimit(params);
}

int CompressGamut(const KernelTarget& target, const GamutMappingSettings& settings) {
  SupportVector params;
  const int result = GetGamutCompressionSupportParams(settings, params);
  if (result < 0) {
    TraceFailure([](auto& message) {
      message << "ApplyGamutMappingGPU : GetGamutCompressionSupportParams failed";
    });
    return result;
  }
  return RunGamutCompressionKernel(target, settings.GamutCompressionSettings::algorithmType,
                                   params);
}

int MapInPlace(const PX::VideoFrameRef& working, const GamutMappingSettings& settings,
               const PX::VideoFrameRef& destination) {
  KernelTarget target;
  // Deliberate: the destination's device, where tone mapping takes the working frame's.
  int result = MakeKernelTarget(working, DeviceOf(destination), target);
  if (result < 0) return result;
  if (CHR::IsGamutCompressionApplicable(settings)) {
    result = CompressGamut(target, settings);
    if (result < 0) return result;
  }
  result = ApplyToneMapGPU(working, settings.toneMapSettings);
  if (result < 0) {
    TraceFailure([](auto& message) { message << "ApplyGamutMappingGPU : ApplyToneMapGPU failed"; });
  }
  return result;
}

}  // namespace

int RunGamutCompressionKernel(const KernelTarget& target,
                              GamutCompressionAlgorithmType algorithmType,
                              const SupportVector& params) {
  const GamutCurveFacts* curve = FindGamutCurve(algorithmType);
  if (curve == nullptr) {
    // Deliberate: told here too, though a call ends before, without parameters for it.
    TraceFailure([&](auto& message) {
      message << "ApplyGamutMappingGPU : (Not implemented) Gamut Compression Algorithm Type : "
              << GetGamutCompressionMethodName(algorithmType, 1);
    });
    return kNotSupported;
  }
  if (HasNothingToCompress(algorithmType, params)) return kSuccess;

  PreparedKernel kernel;
  int result = PrepareKernel(target, curve->kernel, params, {}, kernel);
  if (result < 0) return result;
  result = RunKernel(target, kernel);
  if (result < 0) {
    TraceFailure([&](auto& message) {
      message << "ApplyGamutMappingGPU : Gamut Mapping Kernel failed. Gamut Compression Method : "
              << GetGamutCompressionMethodName(algorithmType, 1);
    });
  }
  return result;
}

int ApplyGamutMappingGPU(const PX::VideoFrameRef& source, const GamutMappingSettings& settings,
                         const PX::VideoFrameRef& destination) {
  const ColorManagementSettings colorManagement =
      WorkingColorManagementSettings(settings.toneMapSettings);
  if (!CHR::IsGamutMappingApplicable(settings)) return CopyUnmapped(source, destination);

  PX::VideoFrameRef working;
  int result = LinearizeFrame(source, working, colorManagement);
  if (result < 0) {
    // Deliberate: "changed", as hosts know the text.
    TraceFailure([](auto& message) {
      message << "ApplyGamutMappingGPU : Source or Destination frame linearisation changed";
    });
    return result;
  }

  result = MapInPlace(working, settings, destination);
  if (result < 0 || working.Object() == destination.Object()) return result;

  result = KS::GPUFrameManipulators::CopyFrame(working, destination, kCopyQuality, colorManagement);
  if (result < 0) {
    TraceFailure(
        [](auto& message) { message << "ApplyGamutMappingGPU : Copy to output frame failed"; });
  }
  return result;
}

}  // namespace Quillon
