// What options take, and where they have an effect.

#include <CLI/CLI.hpp>
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/RunQuillon.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"

using namespace Quillon::Cli;

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Words = std::vector<std::string>;

/// The command line with all commands, to parse with.
class Commands {
 public:
  Commands() {
    for (const auto add : {AddMapCommand, AddChartCommand, AddCurveCommand, AddCompareCommand,
                           AddInspectCommand, AddLutCommand, AddDevicesCommand}) {
      run_.push_back(add(app_));
    }
    RefuseEmptyValues(app_);
  }
  CLI::App& App() { return app_; }

 private:
  CLI::App app_;
  std::vector<Subcommand> run_;  // own what the options write to
};

/// Why these words are refused before anything is run; empty: they are not.
std::string RefusalOf(Words words) {
  Commands commands;
  std::reverse(words.begin(), words.end());
  try {
    commands.App().parse(words);
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

class OptionValues : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunQuillon({"chart", "--size", "32x32", still_}).exitCode, 0);
    ASSERT_EQ(RunQuillon({"chart", "--video", "--frames", "2", "--size", "64x64", clip_}).exitCode,
              0);
  }

  void ExpectRefused(const Words& words, const std::string& said, int code = 2) {
    const RunResult run = RunQuillon(words);
    std::string line;
    for (const std::string& word : words) line += word + " ";
    EXPECT_EQ(run.exitCode, code) << line << run.err;
    EXPECT_THAT(run.err, HasSubstr(said)) << line;
  }

  ScratchFolder folder_;
  const std::string still_ = folder_ / "c.png";
  const std::string clip_ = folder_ / "c.mp4";
  const std::string png_ = folder_ / "o.png";
  const std::string mp4_ = folder_ / "o.mp4";
};

}  // namespace

TEST(OptionValue, IsAWholeDecimalNumberAndNothingElse) {
  for (const std::string value : {"0x64", "1e3", "+5", " 5", "5 ", "5x", "5.0", "-0", "-5", "nan",
                                  "inf", "99999999999999999999", "0"}) {
    const std::string quoted = "'" + value + "' is not a whole number from ";
    for (const std::string option :
         {"--white", "--target-peak", "--threads", "--depth", "--max-pixels"}) {
      EXPECT_THAT(RefusalOf({"map", "a.exr", "b.png", option, value}),
                  HasSubstr(option + ": " + quoted));
    }
    EXPECT_THAT(RefusalOf({"chart", "--video", "c.mp4", "--frames", value}), HasSubstr(quoted));
    EXPECT_THAT(RefusalOf({"inspect", "a.exr", "--max-pixels", value}), HasSubstr(quoted));
    EXPECT_THAT(RefusalOf({"compare", "a.exr", "b.exr", "--white", value}), HasSubstr(quoted));
    EXPECT_THAT(RefusalOf({"lut", "o.cube", "--size", value}), HasSubstr("is none of 17|33|65"));
    EXPECT_THAT(RefusalOf({"chart", "c.png", "--size", value + "x32"}), HasSubstr("is not a size"));
  }
  EXPECT_EQ(RefusalOf({"map", "a.exr", "b.png", "--white", "0203"}), "");
}

TEST(OptionValue, IsANumberWithinItsRange) {
  for (const std::string value :
       {"nan", "inf", "-inf", "0x1p-1", "+0.5", " 0.5", "0.5x", "1e999", "1.5", "-0.1"}) {
    const std::string quoted = "'" + value + "' is not a number from 0 to 1";
    for (const std::string option : {"--knee", "--preserve"}) {
      EXPECT_THAT(RefusalOf({"map", "a.exr", "b.png", option + "=" + value}), HasSubstr(quoted));
    }
    EXPECT_THAT(RefusalOf({"compare", "a", "b", "c.png", "--split=" + value}), HasSubstr(quoted));
  }
  for (const std::string value : {"nan", "inf", "+5", " 5", "0", "-0", "1e7", "1000 nits"}) {
    for (const Words& start :
         {Words{"map", "a.exr", "b.png"}, {"curve", "o.csv"}, {"lut", "o.cube"}}) {
      Words words = start;
      words.push_back("--peak=" + value);
      EXPECT_THAT(RefusalOf(words), HasSubstr("a number of nits above 0"));
    }
  }
  EXPECT_EQ(RefusalOf({"map", "a.exr", "b.png", "--preserve=-0", "--peak", "1e3"}), "");
}

TEST(OptionValue, IsNeverEmpty) {
  int options = 0;
  Commands commands;
  for (const CLI::App* command : commands.App().get_subcommands({})) {
    for (const CLI::Option* option : command->get_options()) {
      if (option->get_items_expected_max() == 0) continue;  // a flag
      ++options;
      const bool positional = option->get_positional();
      const Words words = positional ? Words{command->get_name(), "", "", ""}
                                     : Words{command->get_name(), option->get_name(), ""};
      EXPECT_THAT(RefusalOf(words), HasSubstr("the value is empty"))
          << command->get_name() << ' ' << option->get_name();
    }
  }
  EXPECT_GT(options, 60);
}

TEST_F(OptionValues, AreDecimalWithZerosInFront) {
  const RunResult run = RunQuillon({"map", "--explain", "--white", "0203", still_, png_});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("white             203 nits"));
}

TEST_F(OptionValues, ThatAreRefusedEndWithTheCodeForUsage) {
  ExpectRefused({"map", "--white", "0x64", still_, png_}, "--white: '0x64' is not a whole number");
  ExpectRefused({"lut", "--size", "", folder_ / "o.cube"}, "--size: the value is empty");
  ExpectRefused({"map", "--depth", "", still_, png_}, "--depth: the value is empty");
  ExpectRefused({"map", "--peak=", still_, png_}, "--peak=: the value is empty");
  ExpectRefused({"map", "", png_}, "INPUT: the value is empty");
  EXPECT_THAT(folder_.Names(), testing::ElementsAre("c.mp4", "c.png"));
}

TEST_F(OptionValues, NameTheDepthsThatAnEncoderTakes) {
  for (const char* depth : {"9", "11", "14", "32"}) {
    const RunResult run =
        RunQuillon({"map", "--codec", "ffv1", "--depth", depth, clip_, folder_ / "o.mkv"});
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_THAT(run.err, AllOf(HasSubstr("ffv1 does not take 420 at " + std::string(depth)),
                               HasSubstr("420 at 8 bits, 420 at 10 bits")));
  }
}

TEST_F(OptionValues, ThatTheEncoderRefusesAreRefusedByADryRunToo) {
  const RunResult dry = RunQuillon({"map", "--preset", "xyz", "--dry-run", clip_, mp4_});
  const RunResult run = RunQuillon({"map", "--preset", "xyz", clip_, mp4_});
  EXPECT_NE(dry.exitCode, 0);
  EXPECT_EQ(dry.exitCode, run.exitCode);
  EXPECT_EQ(dry.err, run.err);
  EXPECT_EQ(dry.out, "");
}

TEST_F(OptionValues, AreRefusedWhereTheyHaveNoEffect) {
  const std::string cube = folder_ / "o.cube";
  ExpectRefused({"map", "--quiet", "--explain", still_, png_}, "--explain prints and --quiet");
  ExpectRefused({"lut", "--quiet", "--explain", cube}, "--explain prints and --quiet");
  ExpectRefused({"map", "--quiet", "--dry-run", clip_, mp4_}, "--dry-run prints and --quiet");
  ExpectRefused({"map", "--explain", "--dry-run", clip_, mp4_}, "--explain has no effect");
  ExpectRefused({"map", "--quiet", "--progress", "json", clip_, mp4_}, "--progress has no effect");
  ExpectRefused({"map", "--codec", "ffv1", "--quality", "3", clip_, folder_ / "o.mkv"},
                "--quality and --preset have no effect");
  ExpectRefused({"map", "--fps", "25", clip_, mp4_}, "--fps is for image sequences");
  ExpectRefused({"map", "--codec", "h264", clip_, folder_ / "f.%d.png"}, "--codec has no effect");
  ExpectRefused({"map", "--progress", "none", still_, png_}, "--progress is for clips");
  ExpectRefused({"compare", "--overwrite", still_, still_}, "--overwrite has no effect");
  ExpectRefused({"inspect", "--overwrite", still_}, "--overwrite has no effect");
  ExpectRefused({"inspect", "--json", png_, "--sheet", png_, still_}, "cannot be one file");
  ExpectRefused({"compare", "--view", "clip", still_, still_}, "OUTPUT");
  ExpectRefused({"chart", "--frames", "3", png_}, "--video");
  ExpectRefused({"curve", "--threads", "2", folder_ / "o.csv"}, "--threads");
  ASSERT_EQ(RunQuillon({"map", clip_, folder_ / "f.%d.png"}).exitCode, 0);
  ExpectRefused({"map", "--keep-damaged", folder_ / "f.%d.png", mp4_},
                "--keep-damaged is for clips");
}

TEST_F(OptionValues, AreNotedWhereOnlyThePictureTellsThatTheyHaveNoEffect) {
  ASSERT_EQ(RunQuillon({"map", still_, png_}).exitCode, 0);
  const RunResult run =
      RunQuillon({"map", "--algorithm", "hue", "--gamut", "reinhard", png_, folder_ / "again.png"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, AllOf(HasSubstr("--gamut has no effect"), HasSubstr("--algorithm")));
  EXPECT_THAT(RunQuillon({"map", "--gamut", "reinhard", still_, folder_ / "g.png"}).err, IsEmpty());
}
