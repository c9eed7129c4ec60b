#pragma once

#include <ostream>
#include <string>

#include "tools/quillon/inspect/Inspection.h"

namespace Quillon::Cli {

/// For people: what was found, a line a fact; with levels, a line a scene and a line a frame.
void PrintInspection(std::ostream& out, const Inspection& inspection);

/// The same for programs. Luminances are in nits and say so in their names.
std::string InspectionJson(const Inspection& inspection);

}  // namespace Quillon::Cli
