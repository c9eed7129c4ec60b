#pragma once

#include <string>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/plot/CurveData.h"

namespace Quillon::Cli {

/// Names of the strip's rows: red, yellow, green, cyan, blue, magenta, grey, skin.
std::vector<std::string> HueNames();

/// A picture of one row for each name: the colour, of BT.709 primaries, brightening with its
/// largest component at `nits`. Linear light, 1.0 = `white` nits. Throws CommandError.
PX::VideoFrameRef RenderHues(const std::vector<float>& nits, int white);

/// The mapped rows, for the list and for the eye. Throws CommandError.
MappedHues ReadMappedHues(const PX::VideoFrameRef& mapped, double targetPeakNits, int white);

}  // namespace Quillon::Cli
