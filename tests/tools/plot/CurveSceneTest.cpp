#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "tools/quillon/plot/CurveScene.h"
#include "tools/quillon/plot/CurveStyle.h"

using namespace Quillon::Cli;

namespace {

using ::testing::Contains;
using ::testing::SizeIs;

struct Levels {
  double white = 203.0;
  double sourcePeak = 1000.0;
  double targetPeak = 203.0;
};

AlgorithmCurve ClippedCurve(const std::string& name, const std::vector<float>& source,
                            double targetPeak) {
  AlgorithmCurve curve;
  curve.name = name;
  for (const float nits : source) curve.resultNits.push_back(std::min<double>(nits, targetPeak));
  return curve;
}

CurveData MakeData(const std::vector<std::string>& names, const Levels& levels = {}) {
  CurveData data;
  data.whiteNits = levels.white;
  data.sourcePeakNits = levels.sourcePeak;
  data.targetPeakNits = levels.targetPeak;
  data.source = "here";
  data.destination = "there";
  const double top = EncodeSt2084(std::max({10000.0, 1.6 * levels.white, 1.6 * levels.sourcePeak}));
  for (int i = 0; i <= 100; ++i) {
    data.sourceNits.push_back(static_cast<float>(DecodeSt2084(top * i / 100)));
  }
  for (const std::string& name : names) {
    data.curves.push_back(ClippedCurve(name, data.sourceNits, levels.targetPeak));
  }
  return data;
}

const std::vector<std::string> kAll = {"auto", "bt2390-maxrgb", "bt2390-rgb", "bt2446a",
                                       "hue",  "car",           "none"};

std::vector<Line> LinesOf(const Scene& scene, const Color& color) {
  std::vector<Line> lines;
  std::copy_if(scene.lines.begin(), scene.lines.end(), std::back_inserter(lines),
               [&](const Line& line) { return line.color == color; });
  return lines;
}

/// A box that the text surely covers, and not much more.
Box BoxOf(const Text& text) {
  constexpr double kAdvance = 0.63;  // of DejaVu Sans, its digits
  const double length = kAdvance * text.size * static_cast<double>(text.text.size());
  const double start = text.anchor == Anchor::Start    ? 0.0
                       : text.anchor == Anchor::Middle ? length / 2.0
                                                       : length;
  const double height = 0.75 * text.size;
  if (text.upright) return {text.at.x - height, text.at.y + start - length, height, length};
  return {text.at.x - start, text.at.y - height, length, height};
}

bool Overlap(const Box& a, const Box& b) {
  return a.x < b.Right() && b.x < a.Right() && a.y < b.Bottom() && b.y < a.Bottom();
}

TEST(CurveScene, GivesEachAlgorithmAColourOfItsOwn) {
  for (const std::string& one : kAll) {
    for (const std::string& other : kAll) {
      EXPECT_EQ(StyleOf(one).color == StyleOf(other).color, one == other) << one << ' ' << other;
    }
  }
}

TEST(CurveScene, DrawsEachCurveInBothPanelsAndTheLegend) {
  const Scene scene = MakeCurveScene(MakeData(kAll));
  for (const std::string& name : kAll) {
    const std::vector<Line> lines = LinesOf(scene, StyleOf(name).color);
    ASSERT_THAT(lines, SizeIs(3)) << name;
    for (const Line& line : lines) EXPECT_EQ(line.dashes, StyleOf(name).dashes);
    EXPECT_TRUE(lines[0].clip.has_value() && lines[1].clip.has_value());
    EXPECT_FALSE(lines[2].clip.has_value());
  }
}

TEST(CurveScene, DrawsDashedCurvesOverSolidOnes) {
  const Scene scene = MakeCurveScene(MakeData({"auto", "hue"}));
  const auto at = [&](const std::string& name) {
    return std::find_if(scene.lines.begin(), scene.lines.end(), [&](const Line& line) {
      return line.color == StyleOf(name).color && line.clip.has_value();
    });
  };
  EXPECT_FALSE(StyleOf("auto").dashes.empty());
  EXPECT_TRUE(at("hue") < at("auto"));
}

TEST(CurveScene, PlacesACurveByItsLuminances) {
  const Scene scene = MakeCurveScene(MakeData({"hue"}));
  const std::vector<Line> lines = LinesOf(scene, StyleOf("hue").color);
  for (const Line& line : {lines[0], lines[1]}) {
    const Box& box = *line.clip;
    // The source's end is the panel's right edge.
    EXPECT_NEAR(line.points.back().x, box.Right(), 1e-6);
    const double share = (box.Bottom() - line.points.back().y) / box.height;
    const bool log = box.x < 300.0;
    EXPECT_NEAR(share, log ? std::log10(203.0 / 0.01) / 6.0 : EncodeSt2084(203.0), 1e-6);
  }
}

TEST(CurveScene, LeavesOutResultsThatAreNotFinite) {
  CurveData data = MakeData({"hue"});
  data.curves[0].resultNits[50] = std::numeric_limits<double>::infinity();
  data.curves[0].resultNits[51] = std::numeric_limits<double>::quiet_NaN();
  for (const Line& line : MakeCurveScene(data).lines) {
    for (const Point& point : line.points) {
      EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
    }
  }
}

TEST(CurveScene, MarksKneesOnTheirCurves) {
  CurveData data = MakeData({"hue", "bt2446a"});
  EXPECT_THAT(MakeCurveScene(data).dots, SizeIs(0));
  data.curves[0].knee = CurveKnee{100.0, 100.0};
  const Scene scene = MakeCurveScene(data);
  ASSERT_THAT(scene.dots, SizeIs(3));  // two panels and the legend
  const std::vector<Line> lines = LinesOf(scene, StyleOf("hue").color);
  for (std::size_t panel = 0; panel < 2; ++panel) {
    const Box& box = *lines[panel].clip;
    const Point& at = scene.dots[panel].center;
    EXPECT_EQ(scene.dots[panel].color, StyleOf("hue").color);
    EXPECT_NEAR(at.x - box.x, box.Bottom() - at.y, 1e-9);  // on the identity
    const double share = panel == 0 ? std::log10(100.0 / 0.01) / 6.0 : EncodeSt2084(100.0);
    EXPECT_NEAR((at.x - box.x) / box.width, share, 1e-6);
  }
}

TEST(CurveScene, DrawsKneesThatCoincideOneInTheOther) {
  CurveData data = MakeData({"bt2390-maxrgb", "bt2390-rgb"});
  for (AlgorithmCurve& curve : data.curves) curve.knee = CurveKnee{23.0, 23.0};
  const Scene scene = MakeCurveScene(data);
  EXPECT_GT(scene.dots[0].radius, scene.dots[1].radius);
  EXPECT_GT(scene.dots[1].radius, 0.0);
}

TEST(CurveScene, MarksWhiteAndBothPeaksInEachPanel) {
  const Scene scene = MakeCurveScene(MakeData({"hue"}, {100.0, 4000.0, 600.0}));
  for (const char* label :
       {"reference white 100 nits", "source peak 4000 nits", "target peak 600 nits"}) {
    EXPECT_EQ(std::count_if(scene.texts.begin(), scene.texts.end(),
                            [&](const Text& text) { return text.text == label; }),
              2)
        << label;
  }
}

TEST(CurveScene, KeepsLabelsApartAndOnThePage) {
  for (const Levels& levels : std::vector<Levels>{{203, 1000, 203},
                                                  {203, 203, 203},
                                                  {203, 210, 203},
                                                  {100, 10000, 100},
                                                  {100, 10000, 9000},
                                                  {203, 4000, 600},
                                                  {203, 150, 203},
                                                  {9000, 10000, 9000},
                                                  {10000, 1000, 10000},
                                                  {203, 1000000, 203},
                                                  {48, 108, 48}}) {
    CurveData data = MakeData(kAll, levels);
    for (AlgorithmCurve& curve : data.curves) curve.knee = CurveKnee{123.4, 123.4};
    data.curves[0].resolved = "hue";
    data.hueNames = {"red", "magenta"};
    for (AlgorithmCurve& curve : data.curves) {
      curve.hues.shown.resize(2 * data.sourceNits.size());
    }
    const Scene scene = MakeCurveScene(data);
    for (std::size_t i = 0; i < scene.texts.size(); ++i) {
      const Box box = BoxOf(scene.texts[i]);
      EXPECT_TRUE(box.x >= 0 && box.y >= 0 && box.Right() <= scene.width &&
                  box.Bottom() <= scene.height)
          << scene.texts[i].text << " at a peak of " << levels.sourcePeak;
      for (std::size_t j = 0; j < i; ++j) {
        EXPECT_FALSE(Overlap(box, BoxOf(scene.texts[j])))
            << '\'' << scene.texts[i].text << "' and '" << scene.texts[j].text
            << "' at white, peak, target " << levels.white << ' ' << levels.sourcePeak << ' '
            << levels.targetPeak;
      }
    }
  }
}

TEST(CurveScene, BeginsBelowADimSource) {
  const Scene scene = MakeCurveScene(MakeData({"hue"}, {1.0, 0.02, 1.0}));
  std::vector<std::string> texts;
  for (const Text& text : scene.texts) texts.push_back(text.text);
  EXPECT_THAT(texts, Contains("0.001"));
  EXPECT_THAT(texts, Contains("source peak 0.02 nits"));
}

TEST(CurveScene, ShowsTheColourOfEachLuminanceInItsStrip) {
  CurveData data = MakeData({"hue", "car"});
  data.hueNames = {"red", "blue"};
  for (std::size_t curve = 0; curve < 2; ++curve) {
    for (std::size_t row = 0; row < 2; ++row) {
      for (std::size_t i = 0; i < data.sourceNits.size(); ++i) {
        data.curves[curve].hues.shown.push_back({static_cast<std::uint8_t>(i),
                                                 static_cast<std::uint8_t>(row),
                                                 static_cast<std::uint8_t>(curve)});
      }
    }
  }
  const Scene scene = MakeCurveScene(data);
  ASSERT_THAT(scene.pictures, SizeIs(2));
  for (std::size_t curve = 0; curve < 2; ++curve) {
    const Picture& picture = scene.pictures[curve];
    ASSERT_EQ(picture.rgb.size(), static_cast<std::size_t>(picture.width) * picture.height);
    for (int x = 0; x < picture.width; ++x) {
      const double sample = 100.0 * (x + 0.5) / picture.width;
      const auto& top = picture.rgb[static_cast<std::size_t>(x)];
      const auto& bottom =
          picture.rgb[static_cast<std::size_t>(picture.height - 1) * picture.width + x];
      ASSERT_NEAR(top[0], sample, 1.0);
      ASSERT_EQ(top[1], 0);
      ASSERT_EQ(bottom[1], 1);
      ASSERT_EQ(top[2], curve);
    }
  }
  EXPECT_LT(scene.pictures[0].box.Bottom(), scene.pictures[1].box.y);
  EXPECT_LT(scene.pictures[1].box.Bottom(), scene.height);
}

}  // namespace
