#pragma once

#include <nlohmann/json.hpp>

#include "tools/quillon/compare/CompareOptions.h"

namespace Quillon::Cli {

/// The figures of a comparison, with the field names of the user guide.
nlohmann::ordered_json CompareFiguresJson(const Comparison& comparison,
                                          const CompareSettings& settings);

}  // namespace Quillon::Cli
