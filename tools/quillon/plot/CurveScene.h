#pragma once

#include "tools/quillon/plot/CurveData.h"
#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// The plot of the curves: result against source in nits on log axes and in PQ code values, a
/// legend, and a strip of colours for each curve where the data has them.
Scene MakeCurveScene(const CurveData& data);

}  // namespace Quillon::Cli
