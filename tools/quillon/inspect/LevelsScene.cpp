#include "tools/quillon/inspect/LevelsScene.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "tools/quillon/plot/CurveStyle.h"
#include "tools/quillon/plot/NitsAxis.h"

namespace Quillon::Cli {

namespace {

constexpr int kWidth = 1200;
constexpr int kHeight = 520;
constexpr Box kPanel{76.0, 84.0, 1090.0, 350.0};
constexpr double kLowestNits = 0.01;
constexpr double kLegendY = 496.0;

// Told apart by colour-blind readers (Okabe and Ito).
constexpr Color kPeakColor{0.84, 0.37, 0.0};
constexpr Color kHighColor{0.90, 0.62, 0.0};
constexpr Color kMedianColor{0.34, 0.71, 0.91};
constexpr Color kAverageColor{0.0, 0.45, 0.70};
constexpr Color kChosenColor{0.80, 0.47, 0.65};

class LevelsPlot {
 public:
  LevelsPlot(const Inspection& inspection, const ClipLevels& levels)
      : inspection_(inspection),
        levels_(levels),
        axis_(NitsAxis::Scale::Log, kLowestNits, HighestNits(inspection, levels)) {
    scene_.width = kWidth;
    scene_.height = kHeight;
    scene_.title = "Light levels of " + inspection.path.filename().string();
  }

  Scene Make() {
    AddTexts();
    AddGrid();
    AddCurve(kMedianColor, "median", [](const FrameLevels& f) { return f.percentiles[0]; });
    AddCurve(kAverageColor, "average", [](const FrameLevels& f) { return f.average; });
    AddCurve(kHighColor, "99 %", [](const FrameLevels& f) { return f.percentiles[2]; });
    AddCurve(kPeakColor, "peak", [](const FrameLevels& f) { return f.peak; });
    AddScenes();
    AddChosenPeak();
    return scene_;
  }

 private:
  static double HighestNits(const Inspection& inspection, const ClipLevels& levels) {
    double highest = levels.MaxCll();
    if (inspection.peak) highest = std::max(highest, inspection.peak->nits);
    return std::pow(10.0, std::ceil(std::log10(std::max(highest, 1.0)) + 1e-9));
  }

  /// A frame takes the room between its number and the next.
  double X(double frame) const {
    return kPanel.x + kPanel.width * frame / static_cast<double>(levels_.frames.size());
  }
  double Y(double nits) const {
    return kPanel.Bottom() - kPanel.height * std::max(0.0, axis_.Share(nits));
  }

  void AddText(const std::string& text, Point at, double size, Anchor anchor, const Color& color,
               bool bold = false) {
    scene_.texts.push_back(
        {.text = text, .at = at, .size = size, .anchor = anchor, .bold = bold, .color = color});
  }

  void AddTexts() {
    AddText(scene_.title, {kPanel.x, 34.0}, 17.0, Anchor::Start, kInk, true);
    AddText("The largest of R, G and B in nits, over the frames; the scale is logarithmic",
            {kPanel.x, 56.0}, 12.0, Anchor::Start, kQuietInk);
    AddText("frame", {kPanel.Right(), kPanel.Bottom() + 32.0}, 12.0, Anchor::End, kQuietInk);
  }

  void AddGrid() {
    for (const double decade : axis_.Decades()) {
      const double y = std::floor(Y(decade)) + 0.5;
      scene_.lines.push_back({{{kPanel.x, y}, {kPanel.Right(), y}}, kGrid, 1.0, {}, {}});
      AddText(FormatNits(decade), {kPanel.x - 6.0, y + 4.0}, 11.0, Anchor::End, kQuietInk);
    }
    const std::size_t frames = levels_.frames.size();
    const std::size_t step = std::max<std::size_t>(1, frames / 12);
    for (std::size_t frame = 0; frame < frames; frame += step) {
      AddText(std::to_string(frame), {X(static_cast<double>(frame)), kPanel.Bottom() + 16.0}, 11.0,
              Anchor::Middle, kQuietInk);
    }
  }

  void AddLegend(const Color& color, const std::string& text, const std::vector<double>& dashes) {
    scene_.lines.push_back(
        {{{legendX_, kLegendY - 4.0}, {legendX_ + 30.0, kLegendY - 4.0}}, color, 2.0, dashes, {}});
    AddText(text, {legendX_ + 38.0, kLegendY}, 12.0, Anchor::Start, kInk);
    legendX_ += 64.0 + 7.5 * static_cast<double>(text.size());
  }

  void AddCurve(const Color& color, const std::string& name,
                const std::function<double(const FrameLevels&)>& nitsOf) {
    Line line{{}, color, 1.6, {}, kPanel};
    double frame = 0.0;
    for (const FrameLevels& levels : levels_.frames) {
      line.points.push_back({X(frame), Y(nitsOf(levels))});
      line.points.push_back({X(++frame), Y(nitsOf(levels))});
    }
    scene_.lines.push_back(std::move(line));
    AddLegend(color, name, {});
  }

  void AddScenes() {
    Line line{{}, kChosenColor, 2.0, {2.0, 3.0}, {}};
    for (const ClipScene& scene : inspection_.scenes) {
      const auto first = static_cast<double>(scene.first);
      line.points.push_back({X(first), Y(scene.peak)});
      line.points.push_back({X(first + static_cast<double>(scene.count)), Y(scene.peak)});
    }
    scene_.lines.push_back(std::move(line));
    AddLegend(kChosenColor, "peaks of scenes", {2.0, 3.0});
  }

  void AddChosenPeak() {
    if (!inspection_.peak) return;
    const double y = std::floor(Y(inspection_.peak->nits)) + 0.5;
    const std::vector<double> dashes = {8.0, 4.0};
    scene_.lines.push_back({{{kPanel.x, y}, {kPanel.Right(), y}}, kChosenColor, 2.0, dashes, {}});
    AddLegend(kChosenColor,
              "peak to map from, " + FormatNits(inspection_.peak->nits) + " nits (" +
                  inspection_.peak->origin + ")",
              dashes);
  }

  const Inspection& inspection_;
  const ClipLevels& levels_;
  NitsAxis axis_;
  Scene scene_;
  double legendX_ = kPanel.x;
};

}  // namespace

Scene MakeLevelsScene(const Inspection& inspection, const ClipLevels& levels) {
  return LevelsPlot(inspection, levels).Make();
}

}  // namespace Quillon::Cli
