#pragma once

#include "host/PX/IVideoFrame.h"
#include "tools/quillon/io/Still.h"

/// Light levels of a picture as CTA-861.3 counts them, on the largest of R, G and B.
struct LightLevels {
  double peakNits = 0.0;
  double averageNits = 0.0;
};

/// Measures a frame in system memory whose 1.0 in linear light is `white` nits. Components that are
/// not finite or lie below 0 count as 0. Throws CommandError when the frame cannot be linearised.
LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white);

/// What a file of a mapped picture says of its light: a PQ file tells the levels that it now has,
/// other files none. Throws CommandError.
ContentLight LightOfResult(const PX::VideoFrameRef& result, int white);
