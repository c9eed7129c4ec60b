#pragma once

#include "tools/quillon/plot/CurveData.h"
#include "tools/quillon/plot/NitsAxis.h"
#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// Height of the strips with their headings, ticks and labels.
double HueStripsHeight(const CurveData& data);

/// Adds the mapped colours, a strip for each curve from `top` downwards, to the scene. `axis` is
/// that of the source.
void AddHueStrips(Scene& scene, const CurveData& data, double top, const NitsAxis& axis);

}  // namespace Quillon::Cli
