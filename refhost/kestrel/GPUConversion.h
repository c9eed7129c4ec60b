#pragma once

#include "refhost/chromant/PixelConverter.h"
#include "refhost/kestrel/GPUFrame.h"

namespace RefHost {

/// Pixels from one frame to another of the same size on the same device, which does the work. The
/// two frames may be one. `converter` may be null: colours stay as they are. 0 or a negative code.
int ConvertOnGPU(const GPUFrameView& source, const GPUFrameView& destination,
                 const PixelConverter* converter);

}  // namespace RefHost
