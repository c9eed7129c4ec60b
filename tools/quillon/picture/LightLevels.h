#pragma once

#include "host/pavix/IVideoFrame.h"
#include "mapper/Frames.h"
#include "tools/quillon/io/Still.h"

namespace Quillon::Cli {

using Mapper::LightLevels;

/// Light levels of a frame in system memory whose 1.0 in linear light is `white` nits. Throws
/// CommandError when the frame cannot be linearized.
LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white,
                               double percent = Mapper::kSteadyPercent);

/// The share of the pixels, 0 to 1, that have light below one nit; black has none. Throws
/// CommandError.
double DimShare(const PX::VideoFrameRef& frame, int white);

/// What a file of a mapped picture says of its light: a PQ file tells the levels that it now has,
/// other files none. Throws CommandError.
ContentLight LightOfResult(const PX::VideoFrameRef& result, int white);

}  // namespace Quillon::Cli
