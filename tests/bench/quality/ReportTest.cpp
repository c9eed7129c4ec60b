#include <gtest/gtest.h>

#include "bench/quality/Report.h"

using namespace Quality;

namespace {

Report<Figures> ReportOfTwo() {
  Figures figures;
  figures.insideBt709 = {{2.25, 18.0, 1000}, 0.423};
  figures.rampsInside = {{12, 1.5}, 3, 0.25};
  figures.rampsOutside = {{345, 22.5}, 67, 0.5};
  Report<Figures> report{.picture = "charts", .peakNits = 4000.0, .rows = {}};
  report.Add("quillon hue", "default", figures);
  report.Add("quillon hue", "preserve 0.5", figures);
  report.Add("ffmpeg hable", "", {});
  return report;
}

TEST(QualityReport, HasOneRowForSettingsThatComeToTheSame) {
  Report<Figures> report = ReportOfTwo();
  Figures others;
  others.rampsInside.bands = 9;
  report.Add("quillon hue", "preserve 1", others);
  report.Add("quillon car", "default", report.rows[0].values);
  ASSERT_EQ(report.rows.size(), 4U);
  EXPECT_EQ(report.rows[0].settings, (std::vector<std::string>{"default", "preserve 0.5"}));
  EXPECT_TRUE(report.rows[1].settings.empty());
  EXPECT_EQ(report.rows[2].settings, std::vector<std::string>{"preserve 1"});
  EXPECT_EQ(report.rows[3].name, "quillon car");
}

TEST(QualityReport, IsATableWhoseColumnsAlign) {
  EXPECT_EQ(FormatTable(ReportOfTwo()),
            "charts, peak 4000 nits             "
            " | inside BT.709      | inside P3          | outside BT.709     | patches           "
            " | ramps inside BT.709         | ramps outside BT.709       \n"
            "                                   "
            " |   hue    max  lost |   hue    max  lost |   hue    max  lost |   hue    max  lost"
            " |  order  worst  bands clipped |  order  worst  bands clipped\n"
            "quillon hue  default = preserve 0.5"
            " |  2.25   18.0  42.3 |  0.00    0.0   0.0 |  0.00    0.0   0.0 |  0.00    0.0   0.0"
            " |     12    1.5      3   25.00 |    345   22.5     67   50.00\n"
            "ffmpeg hable                       "
            " |  0.00    0.0   0.0 |  0.00    0.0   0.0 |  0.00    0.0   0.0 |  0.00    0.0   0.0"
            " |      0    0.0      0    0.00 |      0    0.0      0    0.00\n");
}

TEST(QualityReport, TellsAllOfItAsJson) {
  const auto json = ToJson(ReportOfTwo());
  EXPECT_EQ(json["picture"], "charts");
  EXPECT_EQ(json["peakNits"], 4000.0);
  const auto& mapper = json["mappers"][0];
  EXPECT_EQ(mapper["mapper"], "quillon hue");
  EXPECT_EQ(mapper["settings"].size(), 2U);
  EXPECT_EQ(mapper["insideBt709"]["meanHueError"], 2.25);
  EXPECT_EQ(mapper["insideBt709"]["maxHueError"], 18.0);
  EXPECT_EQ(mapper["insideBt709"]["chromaLost"], 0.423);
  const auto& ramps = mapper["rampsInsideBt709"];
  EXPECT_EQ(ramps["orderViolations"], 12);
  EXPECT_EQ(ramps["worstOrderViolation"], 1.5);
  EXPECT_EQ(ramps["bands"], 3);
  EXPECT_EQ(ramps["clippedShare"], 0.25);
  EXPECT_EQ(mapper["rampsOutsideBt709"]["bands"], 67);
}

TEST(QualityReport, HasThePicturesDistances) {
  Report<Difference> report{.picture = "seine", .peakNits = 715.0, .rows = {}};
  report.Add("ffmpeg mobius", "", {9.94, 27.3});
  EXPECT_EQ(FormatTable(report),
            "seine, peak 715 nits | delta-E ITP\n"
            "                     |  mean  95 %\n"
            "ffmpeg mobius        |   9.9  27.3\n");
  EXPECT_EQ(ToJson(report)["mappers"][0]["meanDeltaE"], 9.94);
}

}  // namespace
