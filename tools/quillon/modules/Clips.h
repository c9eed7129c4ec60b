#pragma once

#include "tools/quillon/chart/ChartClip.h"
#include "tools/quillon/clip/OpenClip.h"
#include "tools/quillon/map/MapClip.h"

namespace Quillon::Cli {

/// The module `clips`: all that calls FFmpeg.
struct ClipsModule {
  decltype(&MapClip) mapClip;
  decltype(&RequireClip) requireClip;
  decltype(&OpenClip) openClip;
  decltype(&CountClipFrames) countClipFrames;
  decltype(&WriteChartClip) writeChartClip;
};

}  // namespace Quillon::Cli
