#pragma once

#include "refhost/chromant/PixelConverter.h"
#include "refhost/kestrel/GpuFrame.h"

namespace KS {

/// Pixels from one frame to another of the same size on the same device, which does the work. The
/// two frames may be one. `converter` may be null: colours stay as they are. 0 or a negative code.
int ConvertOnGpu(const GpuFrameView& source, const GpuFrameView& destination,
                 const CHR::PixelConverter* converter);

}  // namespace KS
