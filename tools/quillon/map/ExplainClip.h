#pragma once

#include <ostream>

namespace Quillon::Cli {

struct ClipRun;

/// Writes what `ExplainPlan` does not know of: the output's samples, encoder and tags, and the
/// peaks of the scenes.
void ExplainClip(std::ostream& out, const ClipRun& run);

}  // namespace Quillon::Cli
