#pragma once

#include <string>

#include "tools/quillon/plot/CurveData.h"

namespace Quillon::Cli {

/// The curves as comma-separated values: comment lines that begin with '#' and tell everything that
/// was resolved, a line of column names, and a line for each luminance of the ramp. Numbers have
/// the digits that give the same float when they are read again.
std::string FormatCurveCsv(const CurveData& data);

}  // namespace Quillon::Cli
