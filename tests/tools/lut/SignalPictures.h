#pragma once

#include <filesystem>
#include <vector>

#include "tools/quillon/lut/LutLattice.h"

namespace Quillon::Cli {

/// Writes signals as the pixels of a float EXR of one row per `width` signals. It is tagged as
/// linear light; `map --from` says what the signals are.
void WriteSignals(const std::filesystem::path& path, const std::vector<Signal>& signals, int width);

/// The pixels of a 16-bit PNG as signals from 0 to 1, row after row.
std::vector<Signal> ReadSignals(const std::filesystem::path& path);

}  // namespace Quillon::Cli
