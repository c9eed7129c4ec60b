#include <cmath>

#include "base/ResultCodes.h"
#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"
#include "tests/vectors/Table.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/SupportParams.h"

namespace {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GraphicsWhiteLuminance;
using PX::ToneMappingUtils::ToneMapSettings;
using Quillon::SupportVector;
using vectors::ReadTable;
using vectors::Row;
using vectors::SameBits;
using vectors::UlpsApart;

constexpr long long kTolerance = 4;

class ParamsVectors : public scripted::HostTest {
 protected:
  /// Settings whose peak the host delivers through `ConvertSignalToLinearValue`.
  static ToneMapSettings SettingsFor(int algorithm) {
    ToneMapSettings settings = scripted::MakeRecord(algorithm).toneMapSettings;
    settings.controls.version = 2;
    return settings;
  }

  /// Linear light of the source's peak and of the destination's.
  void Deliver(float sourcePeak, float destinationPeak) {
    host.results.convertSignalToLinear = [=](const ColorSpace& colorSpace, float) {
      return colorSpace.Description() == scripted::kHLG ? sourcePeak : destinationPeak;
    };
  }

  static SupportVector Build(ToneMapSettings settings) {
    SupportVector params;
    Quillon::GetToneMappingSupportParams(settings, params);
    return params;
  }

  static void ExpectWithin(long long ulps, const Row& row, const std::string& column,
                           float actual) {
    EXPECT_LE(UlpsApart(actual, row.Number(column)), ulps)
        << "row " << row.Text("id") << ", " << column << ": " << std::hexfloat << actual
        << " instead of " << row.Number(column);
  }

  static void ExpectExact(const Row& row, const std::string& column, float actual) {
    EXPECT_TRUE(SameBits(actual, row.Number(column)))
        << "row " << row.Text("id") << ", " << column << ": " << std::hexfloat << actual
        << " instead of " << row.Number(column);
  }
};

TEST_F(ParamsVectors, HuePreserving) {
  const std::vector<Row> rows = ReadTable("params_hue.csv");
  for (const Row& row : rows) {
    ToneMapSettings settings = SettingsFor(5);
    settings.controls.peakGain = row.Number("gain");
    settings.knee = row.Number("knee");
    Deliver(row.Number("peak"), row.Number("L"));
    const SupportVector params = Build(settings);
    ASSERT_EQ(params.size(), 3U);
    for (std::size_t entry = 0; entry < 3; ++entry) {
      ExpectExact(row, "v" + std::to_string(entry), params[entry]);
    }
  }
  EXPECT_EQ(rows.size(), 46U);
}

TEST_F(ParamsVectors, CarToneCurve) {
  const std::vector<Row> rows = ReadTable("params_car.csv");
  for (const Row& row : rows) {
    ToneMapSettings settings = SettingsFor(6);
    settings.knee = row.Number("knee");
    Deliver(1.0F, row.Number("Lpeak"));
    const SupportVector params = Build(settings);
    ASSERT_EQ(params.size(), 7U);
    ExpectExact(row, "v0", params[0]);
    ExpectWithin(kTolerance, row, "v1", params[1]);
    ExpectWithin(kTolerance, row, "v2", params[2]);
    ExpectExact(row, "v3", params[3]);
    const auto index = static_cast<std::size_t>(row.Integer("index"));
    EXPECT_EQ(params[1], Quillon::GetCarTables().a.at(index)) << "row " << row.Text("id");
    EXPECT_EQ(params[2], Quillon::GetCarTables().b.at(index)) << "row " << row.Text("id");
  }
  EXPECT_EQ(rows.size(), 89U);
}

TEST_F(ParamsVectors, CarTables) {
  const std::vector<Row> rows = ReadTable("car_tables.csv");
  for (const Row& row : rows) {
    const auto index = static_cast<std::size_t>(row.Integer("index"));
    ExpectWithin(kTolerance, row, "A", Quillon::GetCarTables().a.at(index));
    ExpectWithin(kTolerance, row, "B", Quillon::GetCarTables().b.at(index));
  }
  EXPECT_EQ(rows.size(), 26U);
}

TEST_F(ParamsVectors, Bt2446A) {
  const std::vector<Row> rows = ReadTable("params_bt2446a.csv");
  int withWholeWhite = 0;
  for (const Row& row : rows) {
    const float white = row.Number("W");
    const bool isWhole = white == std::trunc(white);
    const float given = isWhole ? white : 1.0F;
    withWholeWhite += isWhole ? 1 : 0;

    ToneMapSettings settings = SettingsFor(4);
    settings.destinationColorSpace =
        ColorSpace(given == 1.0F ? scripted::kLinear709 : scripted::kSDR);
    settings.colorManagementSettings =
        ColorManagementSettings(static_cast<GraphicsWhiteLuminance>(static_cast<unsigned>(given)));
    host.results.peakNits = row.Number("LHDR");
    const float linear = vectors::ExactQuotient(row.Number("LSDR"), given);
    host.results.convertSignalToLinear = [=](const ColorSpace&, float) { return linear; };

    const SupportVector params = Build(settings);
    ASSERT_EQ(params.size(), 4U);
    ExpectWithin(kTolerance, row, "v0", params[0]);
    ExpectWithin(kTolerance, row, "v1", params[1]);
    ExpectWithin(kTolerance, row, "v2", isWhole ? params[2] : params[2] * white);
    ExpectWithin(kTolerance, row, "v3", isWhole ? params[3] : params[3] / white);
  }
  EXPECT_EQ(rows.size(), 91U);
  EXPECT_EQ(withWholeWhite, 10);
}

class Bt2390Vectors : public ParamsVectors {
 protected:
  /// Scripts the host so that entries 0 to 4 come out as the row has them.
  PX::GamutMappingUtils::GamutMappingSettings Arrange(const Row& row) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    const float white = row.Number("W");
    auto record = scripted::MakeRecord(2);
    record.toneMapSettings.destinationColorSpace =
        ColorSpace(white == 1.0F ? scripted::kLinear709 : scripted::kSDR);
    record.toneMapSettings.colorManagementSettings =
        ColorManagementSettings(static_cast<GraphicsWhiteLuminance>(static_cast<unsigned>(white)));
    host.results.convertFrame = [row](const scripted::Conversion& conversion) {
      if (conversion.width != 2) return;
      const bool isSource = conversion.from.Description() == scripted::kHLG;
      conversion.destination[0] = row.Number(isSource ? "e0" : "e2");
      conversion.destination[4] = row.Number(isSource ? "e1" : "e3");
    };
    return record;
  }
};

TEST_F(Bt2390Vectors, Parameters) {
  const std::vector<Row> rows = ReadTable("params_bt2390.csv");
  for (const Row& row : rows) {
    const SupportVector params = Build(Arrange(row).toneMapSettings);
    ASSERT_EQ(params.size(), 13U) << "row " << row.Text("id");
    for (std::size_t entry = 0; entry < 4; ++entry) {
      ExpectExact(row, "e" + std::to_string(entry), params[entry]);
    }
    ExpectExact(row, "W", params[4]);
    for (std::size_t entry = 5; entry < 9; ++entry) {
      ExpectExact(row, "v" + std::to_string(entry), params[entry]);
    }
    ExpectWithin(kTolerance, row, "v9", params[9]);
  }
  EXPECT_EQ(rows.size(), 116U);
}

TEST_F(Bt2390Vectors, EnginesAnswerToTheParameters) {
  int refused = 0;
  for (const Row& row : ReadTable("params_bt2390.csv")) {
    const auto record = Arrange(row);
    const bool isSound = row.Integer("check") == 0;
    refused += isSound ? 0 : 1;
    std::array<float, 4> pixel = {1.0F, 1.0F, 1.0F, 1.0F};
    EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(pixel.data(), pixel.data(), 1, 1, 4,
                                                              4, record),
              isSound ? Quillon::kSuccess : Quillon::kDegenerateParameters)
        << "row " << row.Text("id");
  }
  EXPECT_EQ(refused, 3);
}

}  // namespace
