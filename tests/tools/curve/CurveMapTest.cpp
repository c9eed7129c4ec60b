#include <array>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/curve/CurveTable.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;

namespace {

using ::testing::Contains;
using ::testing::Not;

using Rgb = std::array<double, 3>;

constexpr int kBT709 = 1;
constexpr int kBT2020 = 9;

struct Case {
  std::string algorithm;
  std::vector<std::string> options;
  int white = 203;

  friend void PrintTo(const Case& test, std::ostream* out) {
    *out << test.algorithm;
    for (const std::string& option : test.options) *out << ' ' << option;
    *out << " --white " << test.white;
  }
};

/// The curves against `map` of a picture with the same pixels.
class CurveAgainstMap : public ::testing::TestWithParam<Case> {
 protected:
  std::vector<std::string> Options() const {
    std::vector<std::string> options = GetParam().options;
    options.insert(options.end(), {"--algorithm", GetParam().algorithm, "--white",
                                   std::to_string(GetParam().white), "--peak", "2000"});
    return options;
  }

  CurveTable Table() const {
    std::vector<std::string> arguments = {"curve", "--hue", folder_ / "table.csv"};
    for (const std::string& option : Options()) arguments.push_back(option);
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return ReadCurveTable(folder_ / "table.csv");
  }

  /// Float EXR of one row: the colour at each luminance.
  void WriteRow(const std::string& name, int primaries, const std::vector<double>& nits,
                const Rgb& colour) const {
    orvmediatypes::color::ColorDescription description;
    description.primaries = static_cast<std::uint8_t>(primaries);
    description.transfer = 8;
    StillOutput output;
    output.depth = 32;
    output.settings = orvmediatypes::color::ColorManagementSettings(
        static_cast<orvmediatypes::color::GraphicsWhiteLuminance>(GetParam().white));
    ASSERT_GE(KS::CreateVideoFrame(output.frame, orvmediatypes::kLinearFloatBGRA,
                                   static_cast<int>(nits.size()), 1, {},
                                   orvmediatypes::color::ColorSpace(description), false, false),
              0);
    const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(output.frame);
    auto* pixel = static_cast<float*>(memory->GetData());
    for (const double luminance : nits) {
      // The listed digits stand for a float.
      const double listed = static_cast<float>(luminance);
      const auto linear = static_cast<float>(listed / GetParam().white);
      for (const double component : {colour[2], colour[1], colour[0]}) {
        *pixel++ = static_cast<float>(component) * linear;
      }
      *pixel++ = 1.0F;
    }
    WriteStill(output, folder_ / name);
  }

  /// Red, green and blue in nits of what `map` makes of a picture.
  std::vector<Rgb> Map(const std::string& name) const {
    const std::string mapped = folder_ / ("mapped-" + name);
    std::vector<std::string> arguments = {"map", "--depth", "32", folder_ / name, mapped};
    for (const std::string& option : Options()) arguments.push_back(option);
    const RunResult run = RunQuillon(arguments);
    if (run.exitCode != 0) throw std::runtime_error(run.err);
    const Still still = ReadStill(mapped);
    const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(still.frame);
    const auto* pixel = static_cast<const float*>(memory->GetData());
    std::vector<Rgb> nits(static_cast<std::size_t>(still.frame->GetBounds().width));
    for (Rgb& rgb : nits) {
      for (int i = 0; i < 3; ++i) rgb[i] = double{pixel[2 - i]} * GetParam().white;
      pixel += 4;
    }
    return nits;
  }

  ScratchFolder folder_;
};

void ExpectSame(double listed, double mapped, std::size_t row) {
  // The digits of a float.
  ASSERT_NEAR(listed, mapped, std::abs(mapped) * 2e-8 + 1e-30) << "row " << row;
}

TEST_P(CurveAgainstMap, ListsWhatMapMakesOfAGreyRamp) {
  const CurveTable table = Table();
  const auto& listed = table[GetParam().algorithm + "_nits"];
  WriteRow("ramp.exr", kBT2020, table["source_nits"], {1.0, 1.0, 1.0});
  const std::vector<Rgb> mapped = Map("ramp.exr");
  ASSERT_EQ(mapped.size(), listed.size());
  for (std::size_t row = 0; row < mapped.size(); ++row)
    ExpectSame(listed[row], mapped[row][1], row);
}

TEST_P(CurveAgainstMap, ListsWhatMapMakesOfColours) {
  const CurveTable table = Table();
  const std::vector<std::pair<std::string, Rgb>> colours = {
      {"red", {1.0, 0.0, 0.0}}, {"cyan", {0.0, 1.0, 1.0}}, {"skin", {1.0, 0.566F, 0.413F}}};
  for (const auto& [name, colour] : colours) {
    WriteRow(name + ".exr", kBT709, table["source_nits"], colour);
    const std::vector<Rgb> mapped = Map(name + ".exr");
    const std::string column = GetParam().algorithm + "_" + name;
    for (std::size_t row = 0; row < mapped.size(); ++row) {
      ExpectSame(table[column + "_r_nits"][row], mapped[row][0], row);
      ExpectSame(table[column + "_g_nits"][row], mapped[row][1], row);
      ExpectSame(table[column + "_b_nits"][row], mapped[row][2], row);
    }
  }
  EXPECT_THAT(table.names, Contains(GetParam().algorithm + "_magenta_b_nits"));
}

const std::vector<std::string> kTo600 = {"--to", "bt2100-pq", "--target-peak", "600"};

INSTANTIATE_TEST_SUITE_P(
    Algorithms, CurveAgainstMap,
    ::testing::Values(Case{"auto", {}}, Case{"bt2390-maxrgb", {}}, Case{"bt2390-rgb", kTo600},
                      Case{"bt2446a", {}}, Case{"bt2446a", kTo600, 100}, Case{"hue", {}},
                      Case{"hue", {"--gain", "1.5", "--preserve", "0.9", "--knee", "0.2"}, 150},
                      Case{"car", kTo600}, Case{"car", {"--to", "p3-d65", "--preserve", "0"}}));

TEST(CurveWithoutHue, ListsNoColours) {
  const ScratchFolder folder;
  ASSERT_EQ(RunQuillon({"curve", folder / "a.csv"}).exitCode, 0);
  EXPECT_THAT(ReadCurveTable(folder / "a.csv").names, Not(Contains("hue_red_r_nits")));
}

}  // namespace
