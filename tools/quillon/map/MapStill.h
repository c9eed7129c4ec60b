#pragma once

#include <ostream>

#include "tools/quillon/map/MapOptions.h"

namespace Quillon::Cli {

/// Reads, maps and writes one still picture. `out` gets the summary and the explanation, `notes`
/// what the user should know about the input. Throws CommandError or StillError; the output then
/// does not stand under its name.
void MapStill(const MapOptions& options, std::ostream& out, std::ostream& notes);

}  // namespace Quillon::Cli
