#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "curves/Matrix3.h"
#include "host/chromant/TransferFunctions.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"
#include "tests/refhost/chromant/Samples.h"

// Held against tables computed from the formulas of the standards.

using orvmediatypes::color::Chromaticities;

namespace {

constexpr double kTolerance = 1e-5;

/// Rows of a table beside these tests, each cut at its commas; comments and the heading left out.
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

float Grey(const CHR::TransferFunction& function, double value) {
  Rgb pixel = {static_cast<float>(value), static_cast<float>(value), static_cast<float>(value)};
  function(pixel.data(), 1.0F);
  return pixel[0];
}

void ExpectRelative(double actual, double expected, const std::string& what) {
  EXPECT_NEAR(actual, expected, kTolerance * expected) << what;
}

Chromaticities Named(const std::string& name) {
  if (name == "BT.709") return *RefHost::ChromaticitiesOf(Space(RefHost::kPrimariesBT709, 0));
  if (name == "BT.2020") return *RefHost::ChromaticitiesOf(Space(RefHost::kPrimariesBT2020, 0));
  if (name == "P3-D65") return *RefHost::ChromaticitiesOf(Space(RefHost::kPrimariesP3D65, 0));
  if (name == "ACES AP1 (D60)") {
    return {{0.713, 0.293}, {0.165, 0.830}, {0.128, 0.044}, {0.32168, 0.33767}};
  }
  throw std::invalid_argument(name);
}

}  // namespace

TEST(SignalToLinear, DecodesPQCodesToTheNitsOfTheStandard) {
  const auto decode = CHR::GetSignalToLinearTransferFn(16, 0);
  for (const auto& row : ReadTable("pq_10bit_codes.csv")) {
    ExpectRelative(Grey(decode, std::stod(row[1])), std::stod(row[2]), "code " + row[0]);
    if (std::stod(row[3]) <= 1.0) {
      ExpectRelative(Grey(decode, std::stod(row[3])), std::stod(row[4]), "code " + row[0]);
    }
  }
}

TEST(LinearToSignal, EncodesRoundNitsToThePQSignalsOfTheStandard) {
  const auto encode = CHR::GetLinearToSignalTransferFn(16, 0);
  for (const auto& row : ReadTable("pq_inverse_eotf.csv")) {
    if (std::stod(row[0]) == 0.0) continue;  // black is 0 here
    ExpectRelative(Grey(encode, std::stod(row[0])), std::stod(row[1]), row[0] + " nits");
  }
}

TEST(ConvertFrame, ShowsHlgGreysAtTheNitsOfTheStandardForEachDisplayPeak) {
  const std::vector<int> peaks = {400, 600, 1000, 2000, 4000};
  for (const auto& row : ReadTable("hlg_10bit_grey.csv")) {
    const float signal = std::stof(row[1]);
    for (std::size_t i = 0; i < peaks.size(); ++i) {
      const auto light =
          Converted({{signal, signal, signal}}, Space(9, 18, peaks[i]), Space(9, 8, peaks[i]), 1);
      ExpectRelative(light[0][0], std::stod(row[3 + i]), "code " + row[0]);
    }
  }
}

TEST(LinearToSignal, PutsTheReferenceLevelsOfBT2408WhereItSays) {
  const auto encodePQ = CHR::GetLinearToSignalTransferFn(16, 0);
  const auto encodeHlg = CHR::GetLinearToSignalTransferFn(18, 0);
  constexpr double kWholePercent = 0.5;
  for (const auto& row : ReadTable("bt2408_reference_levels.csv")) {
    const double nits = std::stod(row[2]);
    EXPECT_NEAR(100.0 * Grey(encodePQ, nits), std::stod(row[3]), kWholePercent) << row[0];
    EXPECT_NEAR(100.0 * Grey(encodeHlg, nits), std::stod(row[4]), kWholePercent) << row[0];
  }
}

TEST(Primaries, GiveTheMatricesOfTheStandards) {
  for (const auto& row : ReadTable("rgb_matrices.csv")) {
    const RefHost::Matrix3 matrix = row[1] == "XYZ"
                                        ? RefHost::RgbToXyz(Named(row[0]))
                                        : RefHost::RgbToRgb(Named(row[0]), Named(row[1]));
    for (std::size_t i = 0; i < matrix.size(); ++i) {
      EXPECT_NEAR(matrix[i], std::stod(row[2 + i]), 1e-11) << row[0] << " to " << row[1];
    }
  }
}

TEST(Primaries, MapWhiteToWhiteWhateverTheWhitePoints) {
  for (const int from : {1, 4, 5, 6, 8, 9, 11, 12, 22}) {
    for (const int to : {1, 4, 9, 11, 12}) {
      std::array<double, 3> white = {1.0, 1.0, 1.0};
      TransformByMatrix3(RefHost::RgbToRgb(*RefHost::ChromaticitiesOf(Space(from, 0)),
                                           *RefHost::ChromaticitiesOf(Space(to, 0)))
                             .data(),
                         white.data());
      for (const double channel : white) EXPECT_NEAR(channel, 1.0, 1e-13) << from << ' ' << to;
    }
  }
}

TEST(Primaries, LeaveGreyAsItIsInDoublePrecisionToo) {
  const RefHost::Matrix3 matrix = RefHost::RgbToRgb(Named("BT.2020"), Named("BT.709"));
  for (double level = 0.001; level < 100.0; level *= 1.1) {
    std::array<double, 3> grey = {level, level, level};
    ConvertPrimaries(matrix.data(), grey.data());
    EXPECT_EQ(grey, (std::array<double, 3>{level, level, level}));
  }
}

TEST(Primaries, TakeXyzAsTheTristimulusValuesOfLightAsItWas) {
  // The white of BT.709, D65, is X 0.9505, Y 1, Z 1.0891.
  const auto white = Converted({{0.950455927F, 1.0F, 1.089057751F}}, Space(10, 8), Space(1, 8))[0];
  for (const float channel : white) EXPECT_NEAR(channel, 1.0F, 1e-6F);
  const auto xyz = Converted({{0.5F, 0.5F, 0.5F}}, Space(1, 8), Space(10, 8))[0];
  EXPECT_NEAR(xyz[0], 0.475227964F, 1e-6F);
  EXPECT_NEAR(xyz[1], 0.5F, 1e-6F);
  EXPECT_NEAR(xyz[2], 0.544528875F, 1e-6F);
}
