#include <limits>

#include <gtest/gtest.h>

#include "refhost/orvmediatypes/H273.h"
#include "tests/tools/compare/TestFrames.h"
#include "tools/quillon/compare/CompareJson.h"
#include "tools/quillon/options/Json.h"

using namespace Quillon::Cli;

namespace {

PX::VideoFrameRef Frame(std::uint8_t transfer, float value) {
  return MakeTestFrame(4, 2, RefHost::kPrimariesBT2020, transfer, [value](int, int) {
    return Rgb{value, value, value};
  });
}

nlohmann::ordered_json FiguresOf(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  const CompareSettings settings;
  return CompareFiguresJson(ComparePictures(a, b, settings), settings);
}

TEST(CompareJson, NamesEveryFigure) {
  const auto json = FiguresOf(Frame(RefHost::kTransferPQ, 0.5F), Frame(RefHost::kTransferPQ, 1.0F));
  EXPECT_EQ(json["width"], 4);
  EXPECT_EQ(json["height"], 2);
  EXPECT_EQ(json["pixels"], 8);
  EXPECT_EQ(json["compared_pixels"], 8);
  EXPECT_EQ(json["white_nits"], 203);
  EXPECT_EQ(json["gamut"], "bt2020");
  for (const char* figure : {"mean", "median", "percentile_95", "percentile_99", "max"}) {
    EXPECT_NEAR(json["delta_e_itp"][figure].get<double>(), 360.0, 1e-3) << figure;
  }
  EXPECT_EQ(json["delta_e_itp"]["max_at"], (nlohmann::ordered_json{{"x", 0}, {"y", 0}}));
  for (const char* signal : {"psnr_pq_bt2020", "psnr_own_signal"}) {
    EXPECT_NEAR(json[signal]["mean_squared_error"].get<double>(), 0.25, 1e-6);
    EXPECT_NEAR(json[signal]["db"].get<double>(), 6.0206, 1e-3);
  }
  EXPECT_EQ(json["a"]["clipped_pixels"], 0);
  EXPECT_EQ(json["b"]["clipped_pixels"], 8);
  EXPECT_EQ(json["b"]["clipped_share"], 1.0);
  EXPECT_EQ(json["b"]["out_of_gamut_pixels"], 0);
  EXPECT_EQ(json["b"]["not_finite_pixels"], 0);
}

TEST(CompareJson, HasNullForAnInfinitePsnrAndForWhatLinearLightLacks) {
  const auto frame = Frame(RefHost::kTransferLinear, 0.5F);
  const auto json = FiguresOf(frame, frame);
  EXPECT_TRUE(json["psnr_pq_bt2020"]["db"].is_null());
  EXPECT_EQ(json["psnr_pq_bt2020"]["mean_squared_error"], 0.0);
  EXPECT_TRUE(json["psnr_own_signal"].is_null());
  EXPECT_TRUE(json["a"]["clipped_pixels"].is_null());
  EXPECT_TRUE(json["a"]["clipped_share"].is_null());
}

TEST(CompareJson, HasNullFiguresWhereNothingCouldBeCompared) {
  const auto frame = Frame(RefHost::kTransferLinear, std::numeric_limits<float>::quiet_NaN());
  const auto json = FiguresOf(frame, frame);
  EXPECT_TRUE(json["delta_e_itp"].is_null());
  EXPECT_TRUE(json["psnr_pq_bt2020"].is_null());
  EXPECT_EQ(json["a"]["not_finite_share"], 1.0);
}

TEST(CompareJson, ReplacesBytesOfANameThatAreNotUtf8) {
  EXPECT_EQ(FormatJson({{"file", "\xFF.png"}}), "{\n  \"file\": \"\xEF\xBF\xBD.png\"\n}\n");
}

}  // namespace
