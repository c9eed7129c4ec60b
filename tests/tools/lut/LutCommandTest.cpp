#include <cmath>
#include <cstddef>
#include <ostream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/RunQuillon.h"
#include "tests/tools/lut/CubeText.h"
#include "tests/tools/lut/SignalPictures.h"

using namespace Quillon::Cli;

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Case {
  std::string from;
  std::vector<std::string> options;

  friend void PrintTo(const Case& test, std::ostream* out) {
    *out << test.from;
    for (const std::string& option : test.options) *out << ' ' << option;
  }
};

/// LUTs against `map` of a picture with the same signals.
class LutAgainstMap : public ::testing::TestWithParam<Case> {
 protected:
  CubeText Lut() const {
    std::vector<std::string> arguments = {
        "lut", "--size", "17", "--from", GetParam().from, "--quiet", folder_ / "a.cube"};
    Append(arguments);
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return ReadCube(folder_ / "a.cube");
  }

  std::vector<Signal> Map(const std::vector<Signal>& signals, int width) const {
    WriteSignals(folder_ / "in.exr", signals, width);
    std::vector<std::string> arguments = {
        "map", "--depth", "16", "--from", GetParam().from, folder_ / "in.exr", folder_ / "out.png"};
    Append(arguments);
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return ReadSignals(folder_ / "out.png");
  }

  ScratchFolder folder_;

 private:
  static void Append(std::vector<std::string>& arguments) {
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  }
};

constexpr double kHalfStep = 0.5 / 65535.0 + 1e-7;  // of a 16-bit PNG, and of a float

TEST_P(LutAgainstMap, HoldsWhatMapMakesOfEachOfItsSignals) {
  const CubeText cube = Lut();
  const std::vector<Signal> mapped = Map(LatticeSignals(17), 17);
  ASSERT_EQ(mapped.size(), cube.lattice.results.size());
  for (std::size_t i = 0; i < mapped.size(); ++i) {
    for (int c = 0; c < 3; ++c) {
      ASSERT_NEAR(cube.lattice.results[i][c], mapped[i][c], kHalfStep) << "result " << i;
    }
  }
}

TEST_P(LutAgainstMap, StatesHowFarItsInterpolationsAreFromMap) {
  const CubeText cube = Lut();
  const std::vector<Signal> signals = SignalsOffLattice(17);
  const std::vector<Signal> mapped = Map(signals, 1024);
  ASSERT_EQ(mapped.size(), signals.size());
  const auto check = [&](Signal (*interpolate)(const LutLattice&, const Signal&),
                         const std::string& name) {
    double largest = 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < signals.size(); ++i) {
      const Signal found = interpolate(cube.lattice, signals[i]);
      for (int c = 0; c < 3; ++c) {
        const double distance = std::abs(double{found[c]} - double{mapped[i][c]});
        largest = std::max(largest, distance);
        sum += distance;
      }
    }
    // Stated with three digits.
    EXPECT_NEAR(NumberBehind(cube.comments, name + " signal max "), largest,
                0.005 * largest + kHalfStep);
    const double mean = sum / (3.0 * static_cast<double>(signals.size()));
    const std::size_t line = cube.comments.find(name);
    EXPECT_NEAR(NumberBehind(cube.comments.substr(line), "mean "), mean, 0.005 * mean + kHalfStep);
  };
  check(InterpolateTetrahedral, "  tetrahedral ");
  check(InterpolateTrilinear, "  trilinear   ");
}

INSTANTIATE_TEST_SUITE_P(
    Mappings, LutAgainstMap,
    ::testing::Values(
        Case{"bt2100-pq", {}}, Case{"bt2100-pq", {"--peak", "1000", "--algorithm", "hue"}},
        Case{"bt2100-pq", {"--to", "p3-d65", "--peak", "4000", "--algorithm", "bt2390-maxrgb"}},
        Case{"bt2100-pq",
             {"--to", "bt2100-pq", "--target-peak", "600", "--algorithm", "bt2390-rgb"}},
        Case{"bt2100-hlg", {"--to", "bt709", "--algorithm", "bt2446a", "--gamut", "desaturate"}},
        Case{"bt2100-hlg",
             {"--white", "100", "--gain", "1.5", "--preserve", "1", "--knee", "0.2", "--algorithm",
              "car", "--gamut", "reinhard"}},
        Case{"bt2100-pq", {"--to", "bt2100-hlg", "--target-peak", "1000", "--algorithm", "none"}}));

class LutCommand : public ::testing::Test {
 protected:
  RunResult Lut(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"lut", folder_ / "a.cube"});
    return RunQuillon(arguments);
  }

  void ExpectUsageError(const std::vector<std::string>& arguments, const std::string& text) const {
    const RunResult run = Lut(arguments);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.out + run.err, HasSubstr(text));
    EXPECT_THAT(folder_.Names(), IsEmpty());
  }

  ScratchFolder folder_;
};

TEST_F(LutCommand, HasTheSizeAskedForAnd33WithoutAQuestion) {
  ASSERT_EQ(Lut({"--size", "65"}).exitCode, 0);
  EXPECT_EQ(ReadCube(folder_ / "a.cube").lattice.size, 65);
  ASSERT_EQ(Lut({"--overwrite"}).exitCode, 0);
  EXPECT_EQ(ReadCube(folder_ / "a.cube").lattice.size, 33);
}

TEST_F(LutCommand, SaysInTheFileWhatItMapsAndHow) {
  ASSERT_EQ(Lut({"--from", "bt2100-hlg", "--peak", "800", "--white", "150"}).exitCode, 0);
  const CubeText cube = ReadCube(folder_ / "a.cube");
  EXPECT_EQ(cube.title, "BT.2100 HLG (CICP 9/18/9) to sRGB (CICP 1/13/1)");
  EXPECT_THAT(
      cube.comments,
      AllOf(HasSubstr("# quillon lut "), HasSubstr("# shaper: HLG (ITU-R BT.2100)\n"),
            HasSubstr("# input: R'G'B' signal of BT.2100 HLG (CICP 9/18/9), full range"),
            HasSubstr("# output: R'G'B' signal of sRGB (CICP 1/13/1), full range, clamped"),
            HasSubstr("# source peak       800 nits"), HasSubstr("# destination peak  150 nits"),
            HasSubstr("# white             150 nits"), HasSubstr("# --algorithm auto\n"),
            HasSubstr("# knee "), HasSubstr("delta-E ITP max ")));
  ASSERT_EQ(Lut({"--overwrite"}).exitCode, 0);
  EXPECT_THAT(ReadCube(folder_ / "a.cube").comments,
              AllOf(HasSubstr("# shaper: PQ (ITU-R BT.2100)\n"),
                    HasSubstr("# source peak       10000 nits")));
}

TEST_F(LutCommand, PrintsTheErrorThatStandsInTheFile) {
  const RunResult run = Lut({"--peak", "1000"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::string comments = ReadCube(folder_ / "a.cube").comments;
  for (const char* name : {"tetrahedral", "trilinear"}) {
    const std::size_t begin = comments.find(std::string("  ") + name);
    ASSERT_NE(begin, std::string::npos);
    EXPECT_THAT(run.out, HasSubstr(comments.substr(begin, comments.find('\n', begin) - begin)));
  }
}

TEST_F(LutCommand, HasSmallerErrorsTheLargerItIs) {
  double last = 100.0;
  for (const char* size : {"17", "33", "65"}) {
    ASSERT_EQ(Lut({"--peak", "1000", "--overwrite", "--size", size}).exitCode, 0);
    const std::string comments = ReadCube(folder_ / "a.cube").comments;
    const double error =
        NumberBehind(comments.substr(comments.find("  tetrahedral")), "delta-E ITP max ");
    EXPECT_GT(error, 0.0);
    EXPECT_LT(error, last);
    last = error;
  }
}

TEST_F(LutCommand, StatesNextToNoErrorWhereNothingChanges) {
  ASSERT_EQ(Lut({"--to", "bt2100-pq", "--algorithm", "none"}).exitCode, 0);
  const CubeText cube = ReadCube(folder_ / "a.cube");
  const std::vector<Signal> signals = LatticeSignals(33);
  for (std::size_t i = 0; i < signals.size(); ++i) {
    for (int c = 0; c < 3; ++c) ASSERT_NEAR(cube.lattice.results[i][c], signals[i][c], 1e-9);
  }
  EXPECT_LT(NumberBehind(cube.comments, "  tetrahedral  signal max "), 1e-6);
  EXPECT_LT(NumberBehind(cube.comments, "delta-E ITP max "), 1e-2);
}

TEST_F(LutCommand, TakesSignalsOfPQAndHlgAlone) {
  ExpectUsageError({"--from", "srgb"}, "PQ or HLG");
  ExpectUsageError({"--from-cicp", "9/8/0"}, "PQ or HLG");
  ExpectUsageError({"--to-cicp", "9/8/0"}, "linear light");
}

TEST_F(LutCommand, RefusesWhatMapRefusesAndWhatOnlyAPictureCouldTell) {
  ExpectUsageError({"--peak", "measure"}, "--peak");
  ExpectUsageError({"--peak", "metadata"}, "--peak");
  ExpectUsageError({"--size", "32"}, "--size");
  ExpectUsageError({"--algorithm", "none", "--gain", "2"}, "--gain has no effect");
  ExpectUsageError({"--target-peak", "600"}, "--target-peak is for PQ and HLG");
}

TEST_F(LutCommand, NotesOptionsThatHaveNoEffect) {
  const RunResult run = Lut({"--peak", "100", "--preserve", "1"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("nothing is tone mapped"));
}

TEST_F(LutCommand, IsSilentWhenAskedToBe) {
  const RunResult run = Lut({"--quiet", "--peak", "100", "--preserve", "1"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out + run.err, IsEmpty());
}

TEST_F(LutCommand, ExplainsEverySettingItResolved) {
  EXPECT_THAT(Lut({"--explain"}).out, HasSubstr("(chosen automatically)"));
}

TEST_F(LutCommand, ReplacesNoFileUnasked) {
  WriteFile(folder_ / "a.cube", "mine");
  EXPECT_EQ(Lut({}).exitCode, 5);
  EXPECT_EQ(ReadFile(folder_ / "a.cube"), "mine");
  EXPECT_EQ(Lut({"--overwrite"}).exitCode, 0);
  EXPECT_EQ(ReadCube(folder_ / "a.cube").lattice.size, 33);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.cube"));
}

TEST_F(LutCommand, WritesOneFormat) {
  const RunResult run = RunQuillon({"lut", folder_ / "a.3dl"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, HasSubstr("choose .cube"));
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

}  // namespace
