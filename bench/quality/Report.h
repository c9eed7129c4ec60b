#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bench/quality/Figures.h"

namespace Quality {

/// What the mappers made of a picture; `Values` is what was measured.
template <class Values>
struct Report {
  struct Row {
    std::string name;
    std::vector<std::string> settings;  ///< those with the same values; empty: there is no choice
    Values values;
  };

  std::string picture;  ///< "charts"
  double peakNits = 0.0;
  std::vector<Row> rows;

  /// Adds a mapper, or its settings to a row of its name that has the same values.
  void Add(const std::string& name, const std::string& setting, const Values& values) {
    for (Row& row : rows) {
      if (row.name != name || !(row.values == values)) continue;
      row.settings.push_back(setting);
      return;
    }
    rows.push_back({name, {}, values});
    if (!setting.empty()) rows.back().settings.push_back(setting);
  }
};

/// A table of a line a row, under a heading, for people.
std::string FormatTable(const Report<Figures>& report);
std::string FormatTable(const Report<Difference>& report);

nlohmann::ordered_json ToJson(const Report<Figures>& report);
nlohmann::ordered_json ToJson(const Report<Difference>& report);

}  // namespace Quality
