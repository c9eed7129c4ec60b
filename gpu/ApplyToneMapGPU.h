#pragma once

#include "host/pavix/IVideoFrame.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// Tone maps a linear GPU frame in place, on the device that it lives on, where tone mapping
/// applies. Returns what the kernel's launch returned, or
///   0           tone mapping does not apply; the frame is not touched
///   0xA00F0001  there is no such kernel
///   0xA00F000C  the algorithm is not implemented, or kernels cannot work on the pixel format
///   0xA00F000F  the parameters computed for the curve are incomplete
/// The settings are not written.
int ApplyToneMapGPU(const PX::VideoFrameRef& working,
                    const PX::ToneMappingUtils::ToneMapSettings& settings);

}  // namespace Quillon
