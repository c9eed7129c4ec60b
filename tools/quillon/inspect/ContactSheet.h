#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "tools/quillon/map/MapOptions.h"
#include "tools/quillon/plot/PlotScene.h"

/// Twelve frames of a clip, evenly spread, small, in sRGB: HDR pictures are mapped as `quillon map`
/// does, all of them from a peak of `peakNits`. `options` tell input, colours and white. Throws
/// CommandError or StillError.
Scene MakeContactSheet(const MapOptions& options, double peakNits);
