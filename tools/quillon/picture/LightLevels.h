#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "host/pavix/IVideoFrame.h"
#include "mapper/Picture.h"
#include "tools/quillon/io/Still.h"

namespace Quillon::Cli {

using Mapper::LightLevels;

/// Light levels of a frame in system memory whose 1.0 in linear light is `white` nits. Throws
/// CommandError when the frame cannot be linearized.
LightLevels MeasureLightLevels(const PX::VideoFrameRef& frame, int white);

/// Gives the light of every pixel of a frame in system memory, row by row: the largest of R, G and
/// B in linear light, 1.0 being `white` nits. Returns the number of pixels. Throws CommandError
/// when the frame cannot be linearized.
std::int64_t ForEachLight(const PX::VideoFrameRef& frame, int white,
                          const std::function<void(std::span<const float>)>& useRow);

/// What a file of a mapped picture says of its light: a PQ file tells the levels that it now has,
/// other files none. Throws CommandError.
ContentLight LightOfResult(const PX::VideoFrameRef& result, int white);

}  // namespace Quillon::Cli
