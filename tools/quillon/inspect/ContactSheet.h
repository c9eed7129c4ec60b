#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "tools/quillon/options/SourceTags.h"
#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// What the sheet is of.
struct SheetSource {
  std::filesystem::path input;
  SourceOverride colors;
  int white = 203;
  std::int64_t maxPixels = 0;
};

/// Twelve frames of a clip, evenly spread, small, in sRGB: HDR pictures are mapped as `quillon map`
/// does, all of them from a peak of `peakNits`. Throws CommandError or
/// StillError.
Scene MakeContactSheet(const SheetSource& source, double peakNits);

}  // namespace Quillon::Cli
