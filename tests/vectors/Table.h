#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vectors {

/// One row of a file of reference vectors, by column name.
class Row {
 public:
  explicit Row(std::map<std::string, std::string> cells) : cells_(std::move(cells)) {}

  /// The cell's text; throws std::out_of_range for a column that is not there.
  const std::string& Text(const std::string& column) const { return cells_.at(column); }
  float Number(const std::string& column) const;
  int Integer(const std::string& column) const;

 private:
  std::map<std::string, std::string> cells_;
};

/// All rows of a file beside this one; throws std::runtime_error when it cannot be read or a row
/// has too few cells.
std::vector<Row> ReadTable(const std::string& fileName);

/// Whole text file, line by line.
std::vector<std::string> ReadLines(const std::string& fileName);

std::vector<std::string> Split(std::string_view text, char separator);

/// Reads a number in full; throws std::runtime_error for anything else.
float ParseNumber(const std::string& text);

/// Equal bit for bit; any two that are not numbers count as equal.
bool SameBits(float first, float second);

/// Steps between two floats on the line of representable numbers; huge when exactly one is not a
/// number.
long long UlpsApart(float first, float second);

/// A factor that times `divisor` rounds to exactly `product`; throws std::runtime_error when there
/// is none.
float ExactQuotient(float product, float divisor);

}  // namespace vectors
