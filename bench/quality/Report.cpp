#include "bench/quality/Report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

namespace Quality {

namespace {

using Json = nlohmann::ordered_json;

template <class... Arguments>
std::string Printed(const char* format, Arguments... arguments) {
  std::array<char, 128> text{};
  std::snprintf(text.data(), text.size(), format, arguments...);
  return text.data();
}

std::string Padded(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

/// `above` and `titles` stand over the columns that `cells` gives a row.
template <class Values>
std::string Table(const Report<Values>& report, const std::string& above, const std::string& titles,
                  const std::function<std::string(const Values&)>& cells) {
  const std::string heading = report.picture + Printed(", peak %.0f nits", report.peakNits);
  std::vector<std::string> labels;
  std::size_t width = heading.size();
  for (const auto& row : report.rows) {
    std::string label = row.name;
    for (const std::string& setting : row.settings) {
      label += (&setting == &row.settings.front() ? "  " : " = ") + setting;
    }
    width = std::max(width, label.size());
    labels.push_back(std::move(label));
  }
  std::string table = Padded(heading, width) + above + '\n' + Padded("", width) + titles + '\n';
  for (std::size_t i = 0; i < labels.size(); ++i) {
    table += Padded(labels[i], width) + cells(report.rows[i].values) + '\n';
  }
  return table;
}

template <class Values>
Json ReportJson(const Report<Values>& report, const std::function<Json(const Values&)>& valuesOf) {
  Json mappers = Json::array();
  for (const auto& row : report.rows) {
    Json mapper = {{"mapper", row.name}, {"settings", row.settings}};
    mapper.update(valuesOf(row.values));
    mappers.push_back(std::move(mapper));
  }
  return {{"picture", report.picture}, {"peakNits", report.peakNits}, {"mappers", mappers}};
}

std::string ColorCells(const ColorFigures& colors) {
  return Printed(" |%6.2f%7.1f%6.1f", colors.hue.meanDegrees, colors.hue.maxDegrees,
                 100.0 * colors.chromaLost);
}

std::string RampCells(const RampFigures& ramps) {
  return Printed(" |%7zu%7.1f%7zu%8.2f", ramps.order.pixels, ramps.order.worstCodes, ramps.bands,
                 100.0 * ramps.clippedShare);
}

Json RampsJson(const RampFigures& ramps) {
  return {{"orderViolations", ramps.order.pixels},
          {"worstOrderViolation", ramps.order.worstCodes},
          {"bands", ramps.bands},
          {"clippedShare", ramps.clippedShare}};
}

Json ColorsJson(const ColorFigures& colors) {
  return {{"meanHueError", colors.hue.meanDegrees},
          {"maxHueError", colors.hue.maxDegrees},
          {"pixelsWithHue", colors.hue.pixels},
          {"chromaLost", colors.chromaLost}};
}

}  // namespace

std::string FormatTable(const Report<Figures>& report) {
  std::string above;
  std::string titles;
  for (const char* group : {"inside BT.709", "inside P3", "outside BT.709", "patches"}) {
    above += Printed(" | %-18s", group);
    titles += " |   hue    max  lost";
  }
  for (const char* group : {"ramps inside BT.709", "ramps outside BT.709"}) {
    above += Printed(" | %-27s", group);
    titles += " |  order  worst  bands clipped";
  }
  return Table<Figures>(report, above, titles, [](const Figures& figures) {
    return ColorCells(figures.insideBt709) + ColorCells(figures.insideP3) +
           ColorCells(figures.outsideBt709) + ColorCells(figures.patches) +
           RampCells(figures.rampsInside) + RampCells(figures.rampsOutside);
  });
}

std::string FormatTable(const Report<Difference>& report) {
  return Table<Difference>(report, " | delta-E ITP", " |  mean  95 %",
                           [](const Difference& values) {
                             return Printed(" |%6.1f%6.1f", values.mean, values.percentile95);
                           });
}

Json ToJson(const Report<Figures>& report) {
  return ReportJson<Figures>(report, [](const Figures& figures) {
    return Json{{"insideBt709", ColorsJson(figures.insideBt709)},
                {"insideP3", ColorsJson(figures.insideP3)},
                {"outsideBt709", ColorsJson(figures.outsideBt709)},
                {"patches", ColorsJson(figures.patches)},
                {"rampsInsideBt709", RampsJson(figures.rampsInside)},
                {"rampsOutsideBt709", RampsJson(figures.rampsOutside)}};
  });
}

Json ToJson(const Report<Difference>& report) {
  return ReportJson<Difference>(report, [](const Difference& values) {
    return Json{{"meanDeltaE", values.mean}, {"percentile95DeltaE", values.percentile95}};
  });
}

}  // namespace Quality
