#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/quality/Light.h"

namespace Quality {

/// Maps pixels of BT.2100 PQ, full range, whose brightest component is known to be `peakNits`, to
/// SDR of BT.709 with white at `kWhiteNits`. The result is what a display takes, clamped to 0 to 1.
/// Throws std::runtime_error.
using MapPixels =
    std::function<std::vector<Signal>(const std::vector<Signal>& pixels, double peakNits)>;

struct Contestant {
  std::string name;      ///< "quillon hue", "ffmpeg hable"
  std::string settings;  ///< "default"; empty where there is no choice
  MapPixels map;
};

/// The mapper library: each algorithm with each of the settings that are named in the source.
std::vector<Contestant> QuillonContestants();

/// FFmpeg's filters zscale and tonemap.
std::vector<Contestant> FfmpegContestants();

/// libplacebo, through FFmpeg's filter, on the first Vulkan device. Without one, or without the
/// filter, there is none, and `remark` says why.
std::vector<Contestant> PlaceboContestants(std::string& remark);

}  // namespace Quality
