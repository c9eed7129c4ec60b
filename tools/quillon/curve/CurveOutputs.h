#pragma once

#include <filesystem>
#include <vector>

#include "tools/quillon/plot/CurveData.h"

namespace Quillon::Cli {

/// Throws the StillError that `WriteCurves` would end with because of the name alone: an extension
/// other than .svg, .png and .csv, a missing folder, something that stands there already.
void CheckCurveTarget(const std::filesystem::path& path, bool overwrite);

/// Writes the curves as an SVG or PNG plot or as CSV, by the extension of each path. Each file
/// appears under its name only when it is whole, and none before all are encoded. Throws
/// StillError.
void WriteCurves(const std::vector<std::filesystem::path>& paths, const CurveData& data,
                 bool overwrite);

}  // namespace Quillon::Cli
