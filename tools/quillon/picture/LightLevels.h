#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/io/Still.h"

/// Light levels of a picture as CTA-861.3 counts them, on the largest of R, G and B.
struct LightLevels {
  double peakNits = 0.0;
  double averageNits = 0.0;
};

/// Measures a frame in system memory whose 1.0 in linear light is `white` nits. Components that are
/// not finite or lie below 0 count as 0. Throws CommandError when the frame cannot be linearised.
LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white);

/// Gives the light of every pixel of a frame in system memory, row by row: the largest of R, G and
/// B in linear light, 1.0 being `white` nits, counted as above. Returns the number of pixels.
/// Throws CommandError when the frame cannot be linearised.
std::int64_t ForEachLight(const PX::VideoFrameRef& frame, int white,
                          const std::function<void(std::span<const float>)>& useRow);

/// What a file of a mapped picture says of its light: a PQ file tells the levels that it now has,
/// other files none. Throws CommandError.
ContentLight LightOfResult(const PX::VideoFrameRef& result, int white);
