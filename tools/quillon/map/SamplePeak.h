#pragma once

#include "host/pavix/IVideoFrame.h"

namespace Quillon::Cli {

/// The largest light in nits in a few rows that are spread over a picture in system memory: what
/// progress can show at little cost. Never above the picture's peak. Throws CommandError.
double SamplePeak(const PX::VideoFrameRef& frame, int white);

}  // namespace Quillon::Cli
