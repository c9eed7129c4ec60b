#pragma once

#include <ostream>

#include "tools/quillon/map/MapOptions.h"

namespace Quillon::Cli {

/// Reads, maps and writes a clip or an image sequence. `out` gets the summary and the explanation,
/// `notes` what the user should know about the input. Throws CommandError or StillError; nothing
/// half-written then stands under the output's name, and the message says what there is.
void MapClip(const MapOptions& options, std::ostream& out, std::ostream& notes);

}  // namespace Quillon::Cli
