// Runs pixels through the very functions that the engine binds, or with --rows through their row
// forms, where a row's parameters have one. Rows on standard input:
//   type,p0,p1,p2,p3,peak,gain,cp,v0,v1,...
// type 2 to 6 is a tone-map algorithm, 101 and 102 are the gamut compressions; p is the pixel in
// memory order, peak, gain and colour preservation are the controls as the curve sees them, v is
// the parameter vector. Numbers as strtof reads them. Prints e0,e1,e2,e3 as hex floats, row by row.
// Exit code 2, and the row's number, for a row that cannot be run.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cpu/GamutCompression.h"
#include "cpu/rows/RowForms.h"
#include "tonemap/Algorithms.h"

namespace {

using Quillon::SupportVector;

constexpr std::size_t kFixedColumns = 8;
constexpr int kReinhard = 101;
constexpr int kDesaturation = 102;

struct Row {
  int type = 0;
  std::array<float, 4> pixel{};
  PX::GamutMappingUtils::GamutMappingSettings settings;
  SupportVector params;
};

float ParseNumber(const std::string& text) {
  char* end = nullptr;
  const float value = std::strtof(text.c_str(), &end);
  if (end == text.c_str() || *end != '\0') throw std::runtime_error("not a number: " + text);
  return value;
}

std::vector<float> ParseColumns(const std::string& line) {
  std::vector<float> columns;
  std::size_t first = 0;
  while (first <= line.size()) {
    const std::size_t comma = std::min(line.find(',', first), line.size());
    columns.push_back(ParseNumber(line.substr(first, comma - first)));
    first = comma + 1;
  }
  return columns;
}

Row ParseRow(const std::string& line) {
  const std::vector<float> columns = ParseColumns(line);
  if (columns.size() < kFixedColumns) throw std::runtime_error("fewer than 8 columns");
  const bool isType = columns[0] >= 0.0F && columns[0] <= kDesaturation;
  if (!isType || columns[0] != std::trunc(columns[0])) throw std::runtime_error("no such type");
  Row row;
  row.type = static_cast<int>(columns[0]);
  row.pixel = {columns[1], columns[2], columns[3], columns[4]};
  row.settings.toneMapSettings.controls.peak = columns[5];
  row.settings.toneMapSettings.controls.peakGain = columns[6];
  row.settings.toneMapSettings.controls.colorPreservation = columns[7];
  row.params.assign(columns.begin() + kFixedColumns, columns.end());
  return row;
}

void RequireParams(const Row& row, std::size_t count) {
  if (row.params.size() < count) throw std::runtime_error("parameter vector is too short");
}

/// The row's function, in the one or the other.
struct Functions {
  Quillon::ToneMapPixelFunction toneMap;
  Quillon::GamutCompressionPixelFunction compressGamut;
};

Functions FunctionsOf(const Row& row) {
  if (row.type == kReinhard) {
    RequireParams(row, 1);
    return {{}, Quillon::GamutCompressionReinhard{}};
  }
  if (row.type == kDesaturation) {
    RequireParams(row, 3);
    return {{}, Quillon::GamutCompressionDesaturation{}};
  }
  const auto type = static_cast<orvmediatypes::color::ToneMapAlgorithmType>(row.type);
  const Quillon::ToneMapAlgorithm* algorithm = Quillon::FindToneMapAlgorithm(type);
  if (algorithm == nullptr) throw std::runtime_error("no curve of this type");
  RequireParams(row, algorithm->facts.entries.size());
  // As the engine has it, except for parameters that it refuses.
  Functions functions;
  if (algorithm->bind != nullptr) functions.toneMap = algorithm->bind(row.params);
  if (!functions.toneMap) functions.toneMap = algorithm->curve;
  return functions;
}

void RunRow(Row& row, bool asRows) {
  const Functions functions = FunctionsOf(row);
  const auto& settings = row.settings;
  float* pixel = row.pixel.data();
  if (asRows &&
      MapRows(Quillon::BestInstructionSet(),
              {functions.toneMap, functions.compressGamut, row.params, row.params, settings}, pixel,
              1, 1.0F)) {
    return;
  }
  if (functions.compressGamut) functions.compressGamut(pixel, row.params, settings);
  if (functions.toneMap) functions.toneMap(pixel, row.params, settings.toneMapSettings);
}

}  // namespace

int main(int argc, char** argv) {
  const bool asRows = argc == 2 && std::string(argv[1]) == "--rows";
  if (argc > 1 && !asRows) {
    std::fprintf(stderr, "usage: curve-probe [--rows] < ROWS\n");
    return 2;
  }
  std::string line;
  for (int number = 1; std::getline(std::cin, line); ++number) {
    if (line.empty()) continue;
    try {
      Row row = ParseRow(line);
      RunRow(row, asRows);
      std::printf("%a,%a,%a,%a\n", static_cast<double>(row.pixel[0]),
                  static_cast<double>(row.pixel[1]), static_cast<double>(row.pixel[2]),
                  static_cast<double>(row.pixel[3]));
    } catch (const std::exception& error) {
      std::fprintf(stderr, "curve-probe: row %d: %s\n", number, error.what());
      return 2;
    }
  }
  return 0;
}
