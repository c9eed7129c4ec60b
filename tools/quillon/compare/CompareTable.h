#pragma once

#include <ostream>

#include "tools/quillon/compare/Compare.h"

namespace Quillon::Cli {

/// Writes the figures of a comparison for the reader.
void PrintComparison(std::ostream& out, const Comparison& comparison,
                     const CompareSettings& settings);

}  // namespace Quillon::Cli
