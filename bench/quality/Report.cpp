#include "bench/quality/Report.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Quality {

namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : " = ") + word;
  return all;
}

std::string Label(const Row& row) { return row.name + "  " + Joined(row.settings); }

std::string FormatColors(const ColorFigures& colors) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), " |%6.2f%7.1f%6.1f", colors.hue.meanDegrees,
                colors.hue.maxDegrees, 100.0 * colors.chromaLost);
  return text.data();
}

std::string FormatRamps(const Figures& figures) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), " |%7zu%7.1f%7zu%8.2f", figures.order.pixels,
                figures.order.worstCodes, figures.bands, 100.0 * figures.clippedShare);
  return text.data();
}

nlohmann::ordered_json ColorsJson(const ColorFigures& colors) {
  return {{"meanHueError", colors.hue.meanDegrees},
          {"maxHueError", colors.hue.maxDegrees},
          {"pixelsWithHue", colors.hue.pixels},
          {"chromaLost", colors.chromaLost}};
}

nlohmann::ordered_json RowJson(const Row& row) {
  const Figures& figures = row.figures;
  return {{"mapper", row.name},
          {"settings", row.settings},
          {"insideBt709", ColorsJson(figures.insideBt709)},
          {"insideP3", ColorsJson(figures.insideP3)},
          {"outsideBt709", ColorsJson(figures.outsideBt709)},
          {"patches", ColorsJson(figures.patches)},
          {"orderViolations", figures.order.pixels},
          {"worstOrderViolation", figures.order.worstCodes},
          {"bands", figures.bands},
          {"clippedShare", figures.clippedShare}};
}

}  // namespace

void AddRow(PeakReport& report, const std::string& name, const std::string& settings,
            const Figures& figures) {
  for (Row& row : report.rows) {
    if (row.name != name || row.figures != figures) continue;
    row.settings.push_back(settings);
    return;
  }
  report.rows.push_back({name, {}, figures});
  if (!settings.empty()) report.rows.back().settings.push_back(settings);
}

std::string FormatTable(const PeakReport& report) {
  std::size_t width = 0;
  for (const Row& row : report.rows) width = std::max(width, Label(row).size());
  const auto padded = [width](const std::string& label) {
    return label + std::string(width - std::min(width, label.size()), ' ');
  };
  std::array<char, 64> title{};
  std::snprintf(title.data(), title.size(), "Peak %.0f nits", report.peakNits);

  std::string table = padded(title.data()) + " |   inside BT.709   |     inside P3     |" +
                      "  outside BT.709   |      patches      |            ramps\n" + padded("");
  for (int group = 0; group < 4; ++group) table += " |  hue    max  lost";
  table += " |  order  worst  bands clipped\n";
  for (const Row& row : report.rows) {
    const Figures& figures = row.figures;
    table += padded(Label(row));
    for (const ColorFigures* colors :
         {&figures.insideBt709, &figures.insideP3, &figures.outsideBt709, &figures.patches}) {
      table += FormatColors(*colors);
    }
    table += FormatRamps(figures) + '\n';
  }
  return table;
}

nlohmann::ordered_json ToJson(const PeakReport& report) {
  nlohmann::ordered_json mappers = nlohmann::ordered_json::array();
  for (const Row& row : report.rows) mappers.push_back(RowJson(row));
  return {{"peakNits", report.peakNits}, {"mappers", mappers}};
}

}  // namespace Quality
