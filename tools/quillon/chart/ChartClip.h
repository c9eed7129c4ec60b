#pragma once

#include <filesystem>
#include <string_view>

namespace Quillon::Cli {

/// A clip of the chart: half of it by day, the highlight wandering, then a cut to night, at a
/// twentieth of the light.
struct ChartClip {
  std::filesystem::path output;
  int width = 960;
  int height = 540;
  int frames = 48;
  bool hlg = false;  ///< BT.2100 HLG, to 1000 nits; else HDR10: BT.2100 PQ with its metadata
  bool overwrite = false;
};

/// Light levels that the clip was given.
struct ChartClipLight {
  double maxCLL = 0.0;
  double maxFALL = 0.0;
};

/// Renders and encodes it (HEVC, 10 bits, 24 frames a second). Throws CommandError or StillError.
ChartClipLight WriteChartClip(const ChartClip& clip);

}  // namespace Quillon::Cli
