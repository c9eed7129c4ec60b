#include "tools/quillon/compare/ViewLegend.h"

#include "tools/quillon/plot/CurveStyle.h"

namespace Quillon::Cli {

namespace {

constexpr int kColumns = 4;
constexpr int kColumnWidth = 124;
constexpr int kRowHeight = 22;
constexpr int kMargin = 8;
constexpr double kTextSize = 12.0;
constexpr double kSwatchWidth = 18.0;
constexpr double kSwatchHeight = 14.0;
constexpr double kBaseline = 15.0;  // below the top of a row

void AddText(Scene& scene, const std::string& text, double x, double rowTop, bool bold) {
  Text label;
  label.text = text;
  label.at = {x, rowTop + kBaseline};
  label.size = kTextSize;
  label.bold = bold;
  label.color = kInk;
  scene.texts.push_back(label);
}

void AddEntry(Scene& scene, const LegendEntry& entry, double x, double rowTop) {
  const double swatchTop = rowTop + (kRowHeight - kSwatchHeight) / 2.0;
  scene.pictures.push_back({{x, swatchTop, kSwatchWidth, kSwatchHeight}, 1, 1, {entry.color}});
  AddText(scene, entry.label, x + kSwatchWidth + 5.0, rowTop, false);
}

}  // namespace

Bitmap DrawLegend(const std::string& title, const std::vector<LegendEntry>& entries) {
  const int rows = (static_cast<int>(entries.size()) + kColumns - 1) / kColumns;
  Scene scene;
  scene.width = 2 * kMargin + kColumns * kColumnWidth;
  scene.height = 2 * kMargin + (1 + rows) * kRowHeight;
  AddText(scene, title, kMargin, kMargin, true);
  for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
    const int left = kMargin + kColumnWidth * (i % kColumns);
    const int top = kMargin + kRowHeight * (1 + i / kColumns);
    AddEntry(scene, entries[i], left, top);
  }
  return DrawBitmap(scene);
}

}  // namespace Quillon::Cli
