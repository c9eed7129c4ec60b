#include <cmath>

#include <gtest/gtest.h>

#include "cpu/GamutCompression.h"
#include "curves/Bt2390.h"
#include "curves/Bt2446A.h"
#include "curves/HighlightDesaturation.h"
#include "curves/SoftKnee.h"
#include "tests/vectors/Table.h"
#include "tonemap/Bt2390.h"
#include "tonemap/Bt2446A.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"
#include "tonemap/PQTables.h"

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

/// How far a curve may be from its vectors: not at all, or by what the power functions of C
/// libraries differ and by what that does at the edges of tables (`lo` and `hi` of the row).
enum class Tolerance { None, Powers };

void ExpectChannel(const Row& row, std::size_t channel, float actual) {
  const std::string number = std::to_string(channel);
  const float expected = row.Number("e" + number);
  const bool isWithin =
      vectors::UlpsApart(actual, expected) <= 4 ||
      (actual >= row.Number("lo" + number) && actual <= row.Number("hi" + number));
  EXPECT_TRUE(isWithin || row.Text("nan")[channel] == '?')
      << "row " << row.Text("id") << " (" << row.Text("tag") << "), channel " << channel << ": "
      << std::hexfloat << actual << " instead of " << expected;
}

template <class ToneMap>
void RunToneMap(const std::string& file, int params, std::size_t count, Tolerance tolerance) {
  const std::vector<Row> rows = ReadTable(file);
  for (const Row& row : rows) {
    PX::ToneMappingUtils::ToneMapSettings settings;
    settings.controls.peak = row.Number("peak");
    settings.controls.peakGain = row.Number("gain");
    settings.controls.colorPreservation = row.Number("cp");
    Pixel pixel = PixelOf(row, "p");
    ToneMap{}(pixel.data(), VectorOf(row, params), settings);
    if (tolerance == Tolerance::None) {
      ExpectPixel(row, pixel);
      continue;
    }
    for (std::size_t channel = 0; channel < 3; ++channel)
      ExpectChannel(row, channel, pixel[channel]);
    EXPECT_TRUE(SameBits(pixel[3], row.Number("e3"))) << "row " << row.Text("id") << ", alpha";
  }
  EXPECT_EQ(rows.size(), count);
}

TEST(CurveVectors, HuePreserving) {
  RunToneMap<Quillon::HuePreservationToneMap>("hue_preserving.csv", 3, 784, Tolerance::None);
}

TEST(CurveVectors, Bt2390MaxRGB) {
  RunToneMap<Quillon::Bt2390MaxRGBToneMap>("bt2390_maxrgb.csv", 13, 845, Tolerance::Powers);
}

TEST(CurveVectors, Bt2390ByChannel) {
  RunToneMap<Quillon::Bt2390RGBByChannelToneMap>("bt2390_channel.csv", 13, 776, Tolerance::Powers);
}

TEST(CurveVectors, Bt2446A) {
  RunToneMap<Quillon::Bt2446AToneMap>("bt2446a.csv", 4, 895, Tolerance::Powers);
}

TEST(CurveVectors, Car) { RunToneMap<Quillon::CARToneMap>("car.csv", 7, 804, Tolerance::Powers); }

TEST(CurveVectors, HighlightDesaturation) {
  const std::vector<Row> rows = ReadTable("piece_highlight.csv");
  for (const Row& row : rows) {
    Pixel pixel = PixelOf(row, "p");
    DesaturateHighlight(pixel.data(), row.Number("gain"), row.Number("T"), row.Number("peak"),
                        row.Number("cp"), row.Number("w1"), row.Number("w2"), row.Number("w3"));
    for (std::size_t channel = 0; channel < 3; ++channel)
      ExpectChannel(row, channel, pixel[channel]);
  }
  EXPECT_EQ(rows.size(), 393U);
}

TEST(CurveVectors, Eetf) {
  const std::vector<Row> rows = ReadTable("piece_eetf.csv");
  for (const Row& row : rows) {
    ExpectChannel(row, 0,
                  Eetf(row.Number("x"), {.sourceBlack = row.Number("o"),
                                         .sourceRange = row.Number("r"),
                                         .kneeStart = row.Number("KS"),
                                         .minLum = row.Number("b"),
                                         .maxLum = row.Number("M")}));
  }
  EXPECT_EQ(rows.size(), 500U);
}

TEST(CurveVectors, Bt2446AChannel) {
  const std::vector<Row> rows = ReadTable("piece_bt2446a_channel.csv");
  for (const Row& row : rows) {
    ExpectChannel(row, 0,
                  Bt2446AChannel(row.Number("x"), row.Number("rhoHdr"), row.Number("rhoSdr")));
  }
  EXPECT_EQ(rows.size(), 303U);
}

void RunTable(const std::string& file, void (*convert)(float*), std::size_t count) {
  const std::vector<Row> rows = ReadTable(file);
  for (const Row& row : rows) {
    std::array<float, 3> pixel = {row.Number("p0"), row.Number("p1"), row.Number("p2")};
    convert(pixel.data());
    for (std::size_t channel = 0; channel < 3; ++channel)
      ExpectChannel(row, channel, pixel[channel]);
  }
  EXPECT_EQ(rows.size(), count);
}

TEST(CurveVectors, PQEncoding) { RunTable("piece_pq_encode.csv", Quillon::EncodePQByTable, 157); }

TEST(CurveVectors, PQDecoding) { RunTable("piece_pq_decode.csv", Quillon::DecodePQByTable, 193); }

TEST(CurveVectors, PQTables) {
  const std::vector<Row> rows = ReadTable("pq_tables.csv");
  for (const Row& row : rows) {
    const bool encode = row.Text("table") == "encode";
    const auto index = static_cast<float>(row.Integer("index"));
    // In the middle between an entry and the next.
    const float at = encode ? index + 0.5F : (index + 0.5F) / 8191.0F;
    std::array<float, 3> pixel = {at, at, at};
    (encode ? Quillon::EncodePQByTable : Quillon::DecodePQByTable)(pixel.data());
    EXPECT_LE(vectors::UlpsApart(pixel[0], row.Number("value")), 4) << "row " << row.Text("id");
  }
  EXPECT_EQ(rows.size(), 136U);
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
