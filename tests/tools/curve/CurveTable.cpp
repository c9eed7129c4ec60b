#include "tests/tools/curve/CurveTable.h"

#include <sstream>
#include <stdexcept>

#include "tests/tools/RunQuillon.h"

namespace {

std::vector<std::string> SplitAtCommas(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream text(line);
  for (std::string field; std::getline(text, field, ',');) fields.push_back(field);
  return fields;
}

void AppendRow(CurveTable& table, const std::string& line) {
  const std::vector<std::string> fields = SplitAtCommas(line);
  if (fields.size() != table.names.size()) throw std::runtime_error("not a row: " + line);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::size_t read = 0;
    table.columns[table.names[i]].push_back(std::stod(fields[i], &read));
    if (read != fields[i].size()) throw std::runtime_error("not a number: " + fields[i]);
  }
}

}  // namespace

CurveTable ReadCurveTable(const std::filesystem::path& path) {
  CurveTable table;
  std::istringstream lines(ReadFile(path));
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('#')) {
      table.comments += line + '\n';
    } else if (table.names.empty()) {
      table.names = SplitAtCommas(line);
    } else {
      AppendRow(table, line);
    }
  }
  return table;
}
