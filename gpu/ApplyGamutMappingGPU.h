#pragma once

#include "base/SupportVector.h"
#include "gpu/KernelTarget.h"
#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"

namespace Quillon {

/// Maps one GPU frame into another: gamut compression on the destination's device, tone mapping on
/// the working frame's, then a copy that converts into the destination's colour space. A source
/// that is linear already is worked on in place. Returns 0 or a positive code of the last step, or
///   0xA00F0001  there is no such kernel
///   0xA00F000C  an algorithm is not implemented, or kernels cannot work on the pixel format
///   0xA00F000F  the parameters computed for the curve are incomplete
///   any other   what a host call returned
/// The destination is then left as the failed step left it.
int ApplyGamutMappingGPU(const PX::VideoFrameRef& source,
                         const PX::GamutMappingUtils::GamutMappingSettings& settings,
                         const PX::VideoFrameRef& destination);

/// Runs the kernel of a gamut-compression algorithm with the parameters of
/// `GetGamutCompressionSupportParams`; none, and 0, where Reinhard has nothing to compress.
int RunGamutCompressionKernel(const KernelTarget& target,
                              orvmediatypes::color::GamutCompressionAlgorithmType algorithmType,
                              const SupportVector& params);

}  // namespace Quillon
