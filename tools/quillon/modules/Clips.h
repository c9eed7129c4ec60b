#pragma once

#include "tools/quillon/ChartClip.h"
#include "tools/quillon/clip/MapClip.h"
#include "tools/quillon/clip/OpenClip.h"

/// The module `clips`: all that calls FFmpeg.
struct ClipsModule {
  decltype(&MapClip) mapClip;
  decltype(&RequireClip) requireClip;
  decltype(&OpenClip) openClip;
  decltype(&CountClipFrames) countClipFrames;
  decltype(&WriteChartClip) writeChartClip;
};
