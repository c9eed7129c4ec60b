#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bench/quality/Figures.h"

namespace Quality {

/// What a mapper came to. Settings with the same figures share a row.
struct Row {
  std::string name;
  std::vector<std::string> settings;  ///< empty where there is no choice
  Figures figures;
};

struct PeakReport {
  double peakNits = 0.0;
  std::vector<Row> rows;
};

/// Adds a mapper; its settings to the last row where that has the same name and the same figures.
void AddRow(PeakReport& report, const std::string& name, const std::string& settings,
            const Figures& figures);

/// A table of fixed columns, for people.
std::string FormatTable(const PeakReport& report);

nlohmann::ordered_json ToJson(const PeakReport& report);

}  // namespace Quality
