#pragma once

#include <vector>

#include "host/pavix/IVideoFrame.h"

namespace Quillon::Cli {

/// Luminances in nits that a ramp steps through, rising without repetition: 1001 equal steps of PQ
/// code value from 0 to a little past the largest of `marks`, to 10000 nits at least, and the
/// marks.
std::vector<float> RampLuminances(const std::vector<double>& marks);

/// The ramp as a picture of one row, linear light in BT.2020 primaries, 1.0 = `white` nits. Throws
/// CommandError.
PX::VideoFrameRef RenderGreyRamp(const std::vector<float>& nits, int white);

/// The nits of one component (0 blue, 1 green, 2 red) of a picture in any colour space, in linear
/// light of its own primaries, row by row. Throws CommandError.
std::vector<double> ComponentNits(const PX::VideoFrameRef& frame, int component, int white);

}  // namespace Quillon::Cli
