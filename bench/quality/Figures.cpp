#include "bench/quality/Figures.h"

#include <algorithm>

namespace Quality {

std::vector<Light> ShownBy(const std::vector<Signal>& pixels) {
  std::vector<Light> shown(pixels.size());
  std::transform(pixels.begin(), pixels.end(), shown.begin(),
                 [](const Signal& pixel) { return ShownBy(pixel); });
  return shown;
}

Figures Measure(const Charts& charts, const std::vector<Signal>& result) {
  const std::vector<Light> shown = ShownBy(result);
  const auto colors = [&](const Part& part) {
    const auto source = part.Of(charts.light);
    return ColorFigures{MeasureHueError(source, part.Of(shown)),
                        MeasureChromaLost(source, part.Of(shown))};
  };
  Figures figures;
  figures.insideBt709 = colors(charts.insideBt709);
  figures.insideP3 = colors(charts.insideP3);
  figures.outsideBt709 = colors(charts.outsideBt709);
  figures.patches = colors(charts.patches);

  std::size_t clipped = 0;
  std::size_t channels = 0;
  for (const Part& ramp : charts.ramps) {
    const OrderViolations order = CountOrderViolations(ramp.Of(shown));
    figures.order.pixels += order.pixels;
    figures.order.worstCodes = std::max(figures.order.worstCodes, order.worstCodes);
    figures.bands += CountBands(ramp.Of(charts.light), ramp.Of(shown));
    clipped += CountClipped(ramp.Of(charts.light), ramp.Of(result));
    channels += 3 * (ramp.count - 1);
  }
  figures.clippedShare = static_cast<double>(clipped) / static_cast<double>(channels);
  return figures;
}

}  // namespace Quality
