#pragma once

#include "host/pavix/IVideoFrame.h"

namespace Quillon::Cli {

/// Peak of the chart's scene in nits.
inline constexpr double kChartPeakNits = 4000.0;

/// What changes in the scene while time goes by.
struct ChartMoment {
  double light = 1.0;  ///< all light is multiplied by this
  double shift = 0.0;  ///< how far the highlight has moved to the right, in widths of its field
};

/// BT.2100 PQ with the mastering display that the scene is made for.
orvmediatypes::color::ColorSpace ChartPQ();

/// Renders a synthetic HDR scene as a float BGRA frame in linear BT.2020 light whose 1.0 is `white`
/// nits: a grey ramp evenly spaced in PQ, flat patches of known luminance, saturated ramps and a
/// hue sweep out to the BT.2020 boundary, a highlight with a saturated glow, and a dark corner.
PX::VideoFrameRef RenderChart(int width, int height, int white, const ChartMoment& moment = {});

}  // namespace Quillon::Cli
