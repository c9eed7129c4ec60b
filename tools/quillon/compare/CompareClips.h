#pragma once

#include "tools/quillon/compare/CompareOptions.h"

namespace Quillon::Cli {

/// Compares two clips, image sequences or stills picture by picture, as far as the shorter one
/// goes. A view is that of the picture with the largest mean delta-E. Throws CommandError or
/// StillError.
void CompareClips(const CompareOptions& options);

}  // namespace Quillon::Cli
