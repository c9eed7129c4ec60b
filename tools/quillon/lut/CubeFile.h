#pragma once

#include <string>

#include "tools/quillon/lut/LutLattice.h"

namespace Quillon::Cli {

/// The LUT as text of the .cube format: a title in one line without quotation marks, the comments,
/// each line of which comes behind a "# ", the size, the domain from 0 to 1, and a line of red,
/// green and blue for each result.
std::string FormatCube(const LutLattice& lattice, const std::string& title,
                       const std::string& comments);

}  // namespace Quillon::Cli
