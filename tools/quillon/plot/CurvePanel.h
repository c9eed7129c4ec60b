#pragma once

#include "tools/quillon/plot/CurveData.h"
#include "tools/quillon/plot/NitsAxis.h"
#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// Adds a square diagram of result against source, both on the same axis, to the scene: grid and
/// ticks, the identity, reference white, both peaks, and each curve with its knee. Ticks and the
/// axes' titles lie outside of `box`, within 60 pixels to its left, 40 below and 32 above.
void AddCurvePanel(Scene& scene, const CurveData& data, const Box& box, const NitsAxis& axis);

}  // namespace Quillon::Cli
