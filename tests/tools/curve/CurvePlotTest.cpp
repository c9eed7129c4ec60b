#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kestrel/FrameInterfaces.h"
#include "mapper/Mapping.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/curve/WellFormed.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/plot/CurveStyle.h"

using namespace Quillon::Cli;

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class CurvePlot : public ::testing::Test {
 protected:
  std::string Plot(const std::string& name, std::vector<std::string> options) const {
    options.insert(options.begin(), "curve");
    options.push_back(folder_ / name);
    const RunResult run = RunQuillon(options);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return folder_ / name;
  }

  ScratchFolder folder_;
};

/// How many paths of an SVG are drawn in a colour.
int CountStrokes(const std::string& svg, const Color& color) {
  static constexpr std::string_view kStroke = "stroke:rgb(";
  int count = 0;
  for (std::size_t at = svg.find(kStroke); at != std::string::npos;
       at = svg.find(kStroke, at + 1)) {
    Color stroke;
    if (std::sscanf(svg.c_str() + at + kStroke.size(), "%lf%%,%lf%%,%lf%%", &stroke.red,
                    &stroke.green, &stroke.blue) != 3) {
      continue;
    }
    const double distance = std::abs(stroke.red / 100.0 - color.red) +
                            std::abs(stroke.green / 100.0 - color.green) +
                            std::abs(stroke.blue / 100.0 - color.blue);
    if (distance < 1e-4) ++count;
  }
  return count;
}

using Rgb = std::array<int, 3>;

std::set<Rgb> ColorsOf(const Still& still) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(still.frame);
  const auto bounds = still.frame->GetBounds();
  std::set<Rgb> colors;
  for (int y = 0; y < bounds.height; ++y) {
    const auto* pixel = static_cast<const std::uint8_t*>(memory->GetData()) +
                        std::ptrdiff_t{y} * memory->GetRowBytes();
    for (int x = 0; x < bounds.width; ++x, pixel += 4) {
      colors.insert({pixel[2], pixel[1], pixel[0]});
    }
  }
  return colors;
}

Rgb Bytes(const Color& color) {
  const auto byte = [](double value) { return static_cast<int>(std::lround(255.0 * value)); };
  return {byte(color.red), byte(color.green), byte(color.blue)};
}

TEST_F(CurvePlot, DrawsALineForEachAlgorithmInBothPanelsAndTheLegend) {
  const std::string svg = ReadFile(Plot("a.svg", {}));
  for (const auto& choice : Quillon::Mapper::Algorithms()) {
    EXPECT_EQ(CountStrokes(svg, StyleOf(choice.name).color), 3) << choice.name;
  }
  const std::string one = ReadFile(Plot("one.svg", {"--algorithm", "hue"}));
  for (const auto& choice : Quillon::Mapper::Algorithms()) {
    EXPECT_EQ(CountStrokes(one, StyleOf(choice.name).color), choice.name == "hue" ? 3 : 0)
        << choice.name;
  }
}

TEST_F(CurvePlot, WritesWellFormedSvg) {
  EXPECT_EQ(WhyNotWellFormed(ReadFile(Plot("a.svg", {}))), "");
  EXPECT_EQ(WhyNotWellFormed(ReadFile(Plot("hue.svg", {"--hue"}))), "");
}

TEST_F(CurvePlot, LabelsAxesMarksAndCurves) {
  const std::string svg =
      ReadFile(Plot("a.svg", {"--peak", "4000", "--white", "100", "--to", "bt2100-pq",
                              "--target-peak", "600", "--knee", "0.4"}));
  for (const char* text :
       {"Source luminance (nits)", "Result luminance (nits)", "Source PQ code value",
        "Result PQ code value", "reference white 100 nits", "source peak 4000 nits",
        "target peak 600 nits", "hue, knee 240 nits", "auto (hue), knee ", "\nbt2446a\n",
        "\ncar, knee", "\nbt2390-maxrgb, knee ", "\nbt2390-rgb, knee ", "\nnone\n", "\nidentity\n",
        "\n1000\n", "BT.2100 PQ"}) {
    EXPECT_THAT(svg, HasSubstr(text));
  }
}

TEST_F(CurvePlot, SaysNothingOfKneesWhereThereIsNone) {
  EXPECT_THAT(ReadFile(Plot("a.svg", {"--algorithm", "bt2446a"})), Not(HasSubstr("knee")));
}

TEST_F(CurvePlot, WritesATaggedPngOfTheSizeOfItsSvg) {
  const std::string svg = ReadFile(Plot("a.svg", {}));
  const Still still = ReadStill(Plot("a.png", {}));
  const auto bounds = still.frame->GetBounds();
  EXPECT_EQ(bounds.width, 1200);
  EXPECT_GT(bounds.height, 700);
  EXPECT_THAT(svg,
              HasSubstr("width=\"1200px\" height=\"" + std::to_string(bounds.height) + "px\""));
  EXPECT_EQ(still.frame->GetColorSpace().Description().primaries, 1);
  EXPECT_EQ(still.frame->GetColorSpace().Description().transfer, 13);
}

TEST_F(CurvePlot, PaintsTheSameColoursIntoPng) {
  const std::set<Rgb> colors = ColorsOf(ReadStill(Plot("a.png", {})));
  EXPECT_TRUE(colors.contains(Rgb{255, 255, 255}));
  for (const auto& choice : Quillon::Mapper::Algorithms()) {
    EXPECT_TRUE(colors.contains(Bytes(StyleOf(choice.name).color))) << choice.name;
  }
}

TEST_F(CurvePlot, AddsAStripForEachAlgorithm) {
  const std::string two =
      ReadFile(Plot("two.svg", {"--hue", "--algorithm", "hue", "--algorithm", "car"}));
  std::size_t images = 0;
  for (std::size_t at = two.find("<image "); at != std::string::npos;
       at = two.find("<image ", at + 1)) {
    ++images;
  }
  EXPECT_EQ(images, 2U);
  for (const char* row : {"red", "yellow", "green", "cyan", "blue", "magenta", "grey", "skin"}) {
    EXPECT_THAT(two, HasSubstr(std::string("\n") + row + '\n'));
  }
  EXPECT_THAT(ReadFile(Plot("none.svg", {})), Not(HasSubstr("<image ")));

  const int tall = ReadStill(Plot("tall.png", {"--hue"})).frame->GetBounds().height;
  const int flat = ReadStill(Plot("flat.png", {})).frame->GetBounds().height;
  EXPECT_GT(tall, flat + 7 * 88);
}

TEST_F(CurvePlot, ShowsClippedColoursWhereNothingIsToneMapped) {
  const std::set<Rgb> colors = ColorsOf(ReadStill(Plot("a.png", {"--hue", "--algorithm", "none"})));
  EXPECT_TRUE(colors.contains(Rgb{255, 0, 0}));
  EXPECT_TRUE(colors.contains(Rgb{0, 0, 255}));
}

TEST(WellFormed, AcceptsElementsAttributesAndReferences) {
  EXPECT_EQ(WhyNotWellFormed("<?xml version=\"1.0\"?>\n<a b='1 > 0' c=\"\"><d/>x &lt; &#65;</a>\n"),
            "");
}

TEST(WellFormed, RefusesWhatIsNotXml) {
  for (const char* text : {"", "<a>", "<a></b>", "<a/><b/>", "<a b=1/>", "<a b='1'c='2'/>",
                           "<a b='&'/>", "<a b='<'/>", "<a>R&D</a>", "<a", "<a b='1/>", "<></>"}) {
    EXPECT_NE(WhyNotWellFormed(text), "") << text;
  }
}

}  // namespace
