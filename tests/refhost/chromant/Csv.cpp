#include "tests/refhost/chromant/Csv.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

std::vector<std::vector<std::string>> ReadTable(const std::string& fileName) {
  std::ifstream file(std::string(QUILLON_TEST_DATA) + '/' + fileName);
  if (!file) throw std::runtime_error("cannot read " + fileName);
  std::vector<std::vector<std::string>> rows;
  bool pastHeading = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    if (!pastHeading) {
      pastHeading = true;
      continue;
    }
    std::vector<std::string> cells;
    std::istringstream stream(line);
    for (std::string cell; std::getline(stream, cell, ',');) cells.push_back(cell);
    rows.push_back(cells);
  }
  if (rows.empty()) throw std::runtime_error("nothing in " + fileName);
  return rows;
}
