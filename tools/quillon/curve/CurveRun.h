#pragma once

#include <ostream>

#include "tools/quillon/curve/CurveOptions.h"
#include "tools/quillon/plot/CurveData.h"

namespace Quillon::Cli {

/// Lets the engine map a grey ramp, and saturated colours where they are asked for, as `map` maps a
/// picture that holds them. `notes` gets what the user should know. Throws CommandError.
CurveData RunCurves(const CurveOptions& options, std::ostream& notes);

}  // namespace Quillon::Cli
