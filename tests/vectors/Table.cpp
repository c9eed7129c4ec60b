#include "tests/vectors/Table.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <stdexcept>

namespace vectors {

float Row::Number(const std::string& column) const { return ParseNumber(Text(column)); }

int Row::Integer(const std::string& column) const {
  return static_cast<int>(std::stoul(Text(column), nullptr, 0));
}

std::vector<std::string> ReadLines(const std::string& fileName) {
  std::ifstream file(std::string(QUILLON_VECTORS_DIR) + "/" + fileName);
  if (!file) throw std::runtime_error("cannot read " + fileName);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> cells;
  while (true) {
    const auto end = text.find(separator);
    cells.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return cells;
    text.remove_prefix(end + 1);
  }
}

std::vector<Row> ReadTable(const std::string& fileName) {
  const std::vector<std::string> lines = ReadLines(fileName);
  if (lines.empty()) throw std::runtime_error(fileName + " is empty");
  const std::vector<std::string> columns = Split(lines[0], ',');
  std::vector<Row> rows;
  for (std::size_t line = 1; line < lines.size(); ++line) {
    const std::vector<std::string> cells = Split(lines[line], ',');
    if (cells.size() != columns.size()) {
      throw std::runtime_error(fileName + ", line " + std::to_string(line + 1));
    }
    std::map<std::string, std::string> row;
    for (std::size_t cell = 0; cell < cells.size(); ++cell) row[columns[cell]] = cells[cell];
    rows.emplace_back(std::move(row));
  }
  return rows;
}

float ParseNumber(const std::string& text) {
  char* end = nullptr;
  const float number = std::strtof(text.c_str(), &end);
  if (text.empty() || *end != '\0') throw std::runtime_error("not a number: '" + text + "'");
  return number;
}

bool SameBits(float first, float second) {
  if (std::isnan(first) || std::isnan(second)) return std::isnan(first) && std::isnan(second);
  return std::bit_cast<std::uint32_t>(first) == std::bit_cast<std::uint32_t>(second);
}

long long UlpsApart(float first, float second) {
  if (std::isnan(first) || std::isnan(second)) {
    return SameBits(first, second) ? 0 : std::numeric_limits<long long>::max();
  }
  const auto place = [](float number) -> long long {
    const auto bits = std::bit_cast<std::int32_t>(number);
    return bits >= 0 ? bits : std::int64_t{std::numeric_limits<std::int32_t>::min()} - bits;
  };
  return std::llabs(place(first) - place(second));
}

float ExactQuotient(float product, float divisor) {
  constexpr float kEnd = std::numeric_limits<float>::infinity();
  const float quotient = product / divisor;
  float below = quotient;
  float above = quotient;
  for (int step = 0; step < 4; ++step) {
    if (SameBits(below * divisor, product)) return below;
    if (SameBits(above * divisor, product)) return above;
    below = std::nextafter(below, -kEnd);
    above = std::nextafter(above, kEnd);
  }
  throw std::runtime_error("no factor yields the product exactly");
}

}  // namespace vectors
