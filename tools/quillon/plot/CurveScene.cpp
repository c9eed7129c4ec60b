#include "tools/quillon/plot/CurveScene.h"

#include <algorithm>
#include <cmath>

#include "tools/quillon/plot/CurvePanel.h"
#include "tools/quillon/plot/CurveStyle.h"
#include "tools/quillon/plot/HueStrips.h"
#include "tools/quillon/plot/NitsAxis.h"

namespace Quillon::Cli {

namespace {

constexpr int kWidth = 1200;
constexpr double kLeft = 76.0;
constexpr Box kNitsPanel{kLeft, 104.0, 490.0, 490.0};
constexpr Box kPQPanel{670.0, 104.0, 490.0, 490.0};

constexpr double kLegendTop = 656.0;
constexpr double kLegendRow = 22.0;
constexpr double kLegendColumn = 272.0;
constexpr std::size_t kLegendColumns = 4;

/// A decade below both 0.1 nits and the source's peak.
double LowestNits(double sourcePeakNits) {
  return std::pow(10.0, std::floor(std::log10(std::min(0.1, sourcePeakNits)) + 1e-9) - 1.0);
}

void AddHeadings(Scene& scene, const CurveData& data) {
  scene.title = "Tone curves from a source peak of " + FormatNits(data.sourcePeakNits) +
                " nits to a target peak of " + FormatNits(data.targetPeakNits) + " nits";
  scene.texts.push_back(
      {.text = scene.title, .at = {kLeft, 34.0}, .size = 17.0, .bold = true, .color = kInk});
  scene.texts.push_back({.text = "A grey ramp from " + data.source + " to " + data.destination +
                                 "; reference white " + FormatNits(data.whiteNits) +
                                 " nits; gain " + FormatNits(data.gain) + "; colour preservation " +
                                 FormatNits(data.colorPreservation),
                         .at = {kLeft, 56.0},
                         .size = 12.0,
                         .color = kQuietInk});
}

class Legend {
 public:
  explicit Legend(Scene& scene) : scene_(scene) {}

  void AddLine(const std::string& text, const CurveStyle& style, double width) {
    const Point at = Next(text);
    scene_.lines.push_back(
        {{{at.x, at.y - 4.0}, {at.x + 30.0, at.y - 4.0}}, style.color, width, style.dashes, {}});
  }
  void AddDot(const std::string& text, const Color& color) {
    const Point at = Next(text);
    scene_.dots.push_back({{at.x + 15.0, at.y - 4.0}, 4.5, color});
  }

 private:
  /// Writes the text of the next entry; where its sign begins.
  Point Next(const std::string& text) {
    const std::size_t row = count_ / kLegendColumns;
    const std::size_t column = count_ % kLegendColumns;
    const Point at{kLeft + kLegendColumn * static_cast<double>(column),
                   kLegendTop + kLegendRow * static_cast<double>(row)};
    ++count_;
    scene_.texts.push_back({.text = text, .at = {at.x + 38.0, at.y}, .size = 12.0, .color = kInk});
    return at;
  }

  Scene& scene_;
  std::size_t count_ = 0;
};

/// The bottom of the legend.
double AddLegend(Scene& scene, const CurveData& data) {
  Legend legend(scene);
  bool knees = false;
  for (const AlgorithmCurve& curve : data.curves) {
    std::string text = curve.name;
    if (!curve.resolved.empty()) text += " (" + curve.resolved + ")";
    if (curve.knee) text += ", knee " + FormatNits(curve.knee->source) + " nits";
    legend.AddLine(text, StyleOf(curve.name), 2.0);
    knees = knees || curve.knee.has_value();
  }
  if (knees) legend.AddDot("knee", kQuietInk);
  legend.AddLine("identity", {kIdentity, {}}, 1.0);
  const std::size_t entries = data.curves.size() + (knees ? 2 : 1);
  const std::size_t rows = (entries + kLegendColumns - 1) / kLegendColumns;
  return kLegendTop + kLegendRow * static_cast<double>(rows - 1);
}

}  // namespace

Scene MakeCurveScene(const CurveData& data) {
  Scene scene;
  scene.width = kWidth;
  AddHeadings(scene, data);
  const double highest = data.LargestNits();
  const NitsAxis pq(NitsAxis::Scale::PQ, 0.0, highest);
  AddCurvePanel(scene, data, kNitsPanel,
                NitsAxis(NitsAxis::Scale::Log, LowestNits(data.sourcePeakNits), highest));
  AddCurvePanel(scene, data, kPQPanel, pq);
  double bottom = AddLegend(scene, data) + 24.0;
  if (!data.hueNames.empty()) {
    AddHueStrips(scene, data, bottom, pq);
    bottom += HueStripsHeight(data);
  }
  scene.height = static_cast<int>(std::ceil(bottom));
  return scene;
}

}  // namespace Quillon::Cli
