#pragma once

#include <string>
#include <vector>

#include "tools/quillon/compare/FalseColors.h"
#include "tools/quillon/plot/DrawScene.h"

namespace Quillon::Cli {

struct LegendEntry {
  std::string label;
  FalseColor color;
};

/// What the colours of a view mean, to be put below it.
Bitmap DrawLegend(const std::string& title, const std::vector<LegendEntry>& entries);

}  // namespace Quillon::Cli
