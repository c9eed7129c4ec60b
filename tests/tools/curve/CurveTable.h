#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// A CSV file of `quillon curve`.
struct CurveTable {
  std::string comments;
  std::vector<std::string> names;  ///< of the columns, in order
  std::map<std::string, std::vector<double>> columns;

  const std::vector<double>& operator[](const std::string& name) const { return columns.at(name); }
};

/// Throws std::runtime_error where a line has not one number for each column.
CurveTable ReadCurveTable(const std::filesystem::path& path);
