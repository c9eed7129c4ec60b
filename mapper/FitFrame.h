#pragma once

#include "host/pavix/IVideoFrame.h"
#include "mapper/GamutFit.h"
#include "mapper/Result.h"

namespace Quillon::Mapper {

/// Fits a float BGRA frame of system memory in place, in parallel bands.
void FitFrame(const GamutFit& fit, const PX::VideoFrameRef& frame);

/// The same for a frame on a device, with the same bits on every device that is exact.
Failure FitOnDevice(const GamutFit& fit, const PX::VideoFrameRef& frame);

}  // namespace Quillon::Mapper
