#include <cmath>

#include <gtest/gtest.h>

#include "cpu/GamutCompression.h"
#include "curves/SoftKnee.h"
#include "tests/vectors/Table.h"
#include "tonemap/HuePreservation.h"

namespace {

using Quillon::SupportVector;
using vectors::ReadTable;
using vectors::Row;
using vectors::SameBits;

using Pixel = std::array<float, 4>;

Pixel PixelOf(const Row& row, const std::string& prefix) {
  Pixel pixel;
  for (std::size_t channel = 0; channel < pixel.size(); ++channel) {
    pixel[channel] = row.Number(prefix + std::to_string(channel));
  }
  return pixel;
}

SupportVector VectorOf(const Row& row, int length) {
  SupportVector vector;
  for (int entry = 0; entry < length; ++entry) {
    vector.push_back(row.Number("v" + std::to_string(entry)));
  }
  return vector;
}

void ExpectPixel(const Row& row, const Pixel& actual) {
  const Pixel expected = PixelOf(row, "e");
  const std::string& nan = row.Text("nan");
  for (std::size_t channel = 0; channel < actual.size(); ++channel) {
    const char rule = channel < nan.size() ? nan[channel] : '-';
    if (rule == '?') continue;
    EXPECT_TRUE(rule == '-' || std::isnan(actual[channel]) == (rule == 'n'));
    EXPECT_TRUE(SameBits(actual[channel], expected[channel]))
        << "row " << row.Text("id") << " (" << row.Text("tag") << "), channel " << channel << ": "
        << std::hexfloat << actual[channel] << " instead of " << expected[channel];
  }
}

TEST(CurveVectors, GamutReinhard) {
  const std::vector<Row> rows = ReadTable("gamut_reinhard.csv");
  for (const Row& row : rows) {
    Pixel pixel = PixelOf(row, "p");
    Quillon::GamutCompressionReinhard{}(pixel.data(), VectorOf(row, 1), {});
    ExpectPixel(row, pixel);
  }
  EXPECT_EQ(rows.size(), 705U);
}

TEST(CurveVectors, GamutDesaturation) {
  const std::vector<Row> rows = ReadTable("gamut_desaturation.csv");
  for (const Row& row : rows) {
    Pixel pixel = PixelOf(row, "p");
    Quillon::GamutCompressionDesaturation{}(pixel.data(), VectorOf(row, 3), {});
    ExpectPixel(row, pixel);
  }
  EXPECT_EQ(rows.size(), 678U);
}

TEST(CurveVectors, HuePreserving) {
  const std::vector<Row> rows = ReadTable("hue_preserving.csv");
  for (const Row& row : rows) {
    PX::ToneMappingUtils::ToneMapSettings settings;
    settings.controls.peak = row.Number("peak");
    settings.controls.peakGain = row.Number("gain");
    settings.controls.colorPreservation = row.Number("cp");
    Pixel pixel = PixelOf(row, "p");
    Quillon::HuePreservationToneMap{}(pixel.data(), VectorOf(row, 3), settings);
    ExpectPixel(row, pixel);
  }
  EXPECT_EQ(rows.size(), 784U);
}

TEST(CurveVectors, SoftKnee) {
  const std::vector<Row> rows = ReadTable("piece_softknee.csv");
  for (const Row& row : rows) {
    const float actual =
        SoftKnee(row.Number("x"), row.Number("a"), row.Number("b"), row.Number("q"));
    EXPECT_TRUE(SameBits(actual, row.Number("e0")))
        << "row " << row.Text("id") << ": " << std::hexfloat << actual << " instead of "
        << row.Number("e0");
  }
  EXPECT_EQ(rows.size(), 256U);
}

}  // namespace
