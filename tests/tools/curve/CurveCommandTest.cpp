#include <algorithm>
#include <functional>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "mapper/Mapping.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/curve/CurveTable.h"

namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class CurveCommand : public ::testing::Test {
 protected:
  RunResult Curve(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "curve");
    return RunQuillon(arguments);
  }

  CurveTable Table(std::vector<std::string> arguments) const {
    arguments.push_back("--overwrite");
    arguments.push_back(folder_ / "table.csv");
    const RunResult run = Curve(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return ReadCurveTable(folder_ / "table.csv");
  }

  ScratchFolder folder_;
};

/// The row of a luminance that the ramp has exactly.
std::size_t RowOf(const CurveTable& table, double nits) {
  const auto& source = table["source_nits"];
  const auto found = std::find(source.begin(), source.end(), nits);
  if (found == source.end()) throw std::runtime_error("no row of " + std::to_string(nits));
  return static_cast<std::size_t>(found - source.begin());
}

TEST_F(CurveCommand, ListsAllAlgorithmsUnlessSomeAreChosen) {
  const CurveTable all = Table({});
  std::vector<std::string> expected = {"source_nits", "source_pq"};
  for (const auto& choice : Quillon::Mapper::Algorithms()) {
    expected.push_back(std::string(choice.name) + "_nits");
    expected.push_back(std::string(choice.name) + "_pq");
  }
  EXPECT_EQ(all.names, expected);

  const CurveTable two = Table({"--algorithm", "car", "--algorithm", "hue", "--algorithm", "car"});
  EXPECT_THAT(two.names,
              ElementsAre("source_nits", "source_pq", "car_nits", "car_pq", "hue_nits", "hue_pq"));
}

TEST_F(CurveCommand, ListsARisingRampFromBlackPastTheSourcePeak) {
  for (const auto& [peak, last] : {std::pair{1000.0, 10000.0}, std::pair{40000.0, 64000.0}}) {
    const CurveTable table = Table({"--algorithm", "hue", "--peak", std::to_string(peak)});
    const auto& source = table["source_nits"];
    EXPECT_GE(source.size(), 1001U);
    EXPECT_EQ(source.front(), 0.0);
    EXPECT_NEAR(source.back(), last, last * 1e-6);
    EXPECT_TRUE(std::adjacent_find(source.begin(), source.end(), std::greater_equal<>()) ==
                source.end());
    EXPECT_THAT(source, AllOf(Contains(peak), Contains(203.0)));
  }
}

TEST_F(CurveCommand, ListsTheCodeValuesOfItsLuminances) {
  const CurveTable table = Table({});
  for (const auto& choice : Quillon::Mapper::Algorithms()) {
    const std::string name(choice.name);
    for (std::size_t row = 0; row < table["source_nits"].size(); ++row) {
      ASSERT_NEAR(table[name + "_pq"][row], EncodeSt2084(table[name + "_nits"][row]), 1e-8) << name;
      ASSERT_NEAR(table["source_pq"][row], EncodeSt2084(table["source_nits"][row]), 1e-8);
    }
  }
}

TEST_F(CurveCommand, NeverFallsWithASourceThatRises) {
  for (const char* peak : {"300", "1000", "4000"}) {
    const CurveTable table = Table({"--peak", peak});
    for (const auto& choice : Quillon::Mapper::Algorithms()) {
      const auto& result = table[std::string(choice.name) + "_nits"];
      for (std::size_t row = 1; row < result.size(); ++row) {
        // A float's width: the conversions between colour spaces round.
        ASSERT_GE(result[row], result[row - 1] * (1.0 - 3e-7)) << choice.name << ", row " << row;
      }
      EXPECT_GT(result.back(), 100.0) << choice.name;
    }
  }
}

TEST_F(CurveCommand, BringsThePeakToTheTargetPeakByTheHuePreservingCurve) {
  const CurveTable sdr = Table({"--algorithm", "hue", "--peak", "1000"});
  EXPECT_NEAR(sdr["hue_nits"][RowOf(sdr, 1000.0)], 203.0, 1e-3);
  const CurveTable hdr = Table({"--algorithm", "hue", "--peak", "4000", "--white", "100", "--to",
                                "bt2100-pq", "--target-peak", "600"});
  EXPECT_NEAR(hdr["hue_nits"][RowOf(hdr, 4000.0)], 600.0, 1e-2);
}

TEST_F(CurveCommand, IsStraightUpToTheKneeAndBendsBehindIt) {
  const CurveTable table = Table({"--algorithm", "hue", "--knee", "0.25", "--peak", "1000"});
  EXPECT_THAT(table.comments, HasSubstr("knee              at a source of 50.75 nits"));
  const auto& source = table["source_nits"];
  for (std::size_t row = 0; row < source.size(); ++row) {
    if (source[row] < 50.7) {
      EXPECT_NEAR(table["hue_nits"][row], source[row], source[row] * 1e-5);
    } else if (source[row] > 52.0) {
      EXPECT_LT(table["hue_nits"][row], source[row] * 0.9999);
    }
  }
}

TEST_F(CurveCommand, FindsTheKneeOnTheSourceBeforeItsGain) {
  EXPECT_THAT(Table({"--algorithm", "hue", "--gain", "2"}).comments,
              HasSubstr("at a source of 50.75 nits, result 101.4"));
}

TEST_F(CurveCommand, StatesWhatWasResolved) {
  const std::string comments =
      Table({"--peak", "4000", "--gain", "1.5", "--preserve", "0.25"}).comments;
  for (const char* text :
       {"# source peak 4000 nits, target peak 203 nits, reference white 203 nits",
        "gain              1.5", "preserve          0.25", "linear light (CICP 9/8/0)",
        "sRGB (CICP 1/13/1)", "mapped from       BT.2100 PQ (CICP 9/16/0)",
        "(chosen automatically)", "knee start KS = "}) {
    EXPECT_THAT(comments, HasSubstr(text));
  }
  for (const auto& choice : Quillon::Mapper::Algorithms()) {
    EXPECT_THAT(comments, HasSubstr("# --algorithm " + std::string(choice.name) + '\n'));
  }
}

TEST_F(CurveCommand, WritesSeveralFormatsOfOneRun) {
  const RunResult run = Curve({folder_ / "a.svg", folder_ / "a.PNG", folder_ / "a.csv"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("a.svg"), HasSubstr("a.PNG"), HasSubstr("a.csv")));
  EXPECT_THAT(run.out, HasSubstr("source peak 1000 nits to target peak 203 nits"));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.PNG", "a.csv", "a.svg"));
}

TEST_F(CurveCommand, WritesTheSameBytesEachTime) {
  ASSERT_EQ(Curve({"--hue", folder_ / "a.svg", folder_ / "a.png", folder_ / "a.csv"}).exitCode, 0);
  ASSERT_EQ(Curve({"--hue", folder_ / "b.svg", folder_ / "b.png", folder_ / "b.csv"}).exitCode, 0);
  for (const char* extension : {".svg", ".png", ".csv"}) {
    EXPECT_EQ(ReadFile(folder_ / (std::string("a") + extension)),
              ReadFile(folder_ / (std::string("b") + extension)));
  }
}

TEST_F(CurveCommand, IsSilentWhenAskedToBe) {
  const RunResult run = Curve({"--quiet", "--peak", "100", folder_ / "a.csv"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out + run.err, IsEmpty());
}

TEST_F(CurveCommand, NotesThatNothingIsToneMapped) {
  const RunResult run = Curve({"--peak", "100", folder_ / "a.csv"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("nothing is tone mapped"));
  EXPECT_THAT(ReadCurveTable(folder_ / "a.csv").comments, Not(HasSubstr("at a source of")));
  EXPECT_THAT(Curve({folder_ / "b.csv"}).err, IsEmpty());
}

TEST_F(CurveCommand, RefusesOptionsThatNoneOfTheAlgorithmsFollows) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> refusals = {
      {{"--target-peak", "500"}, "--target-peak"},
      {{"--algorithm", "auto", "--knee", "0.3"}, "--knee"},
      {{"--algorithm", "bt2446a", "--algorithm", "none", "--knee", "0.3"}, "--knee"},
      {{"--algorithm", "none", "--gain", "2"}, "--gain"},
      {{"--algorithm", "none", "--preserve", "1"}, "--preserve"},
      {{"--algorithm", "none", "--peak", "2000"}, "--peak"},
      {{"--to", "srgb", "--to-cicp", "1/1/1"}, "--to-cicp"},
  };
  for (const auto& [options, named] : refusals) {
    std::vector<std::string> arguments = {folder_ / "a.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const RunResult run = Curve(arguments);
    EXPECT_EQ(run.exitCode, 2) << named;
    EXPECT_THAT(run.err, HasSubstr(named));
  }
  EXPECT_THAT(folder_.Names(), IsEmpty());
  EXPECT_EQ(
      Curve({"--algorithm", "bt2446a", "--algorithm", "car", "--knee", "0.3", folder_ / "a.csv"})
          .exitCode,
      0);
}

TEST_F(CurveCommand, RefusesValuesOutOfRange) {
  const std::vector<std::pair<std::string, std::string>> refused = {
      {"--peak", "0"},        {"--peak", "-5"},        {"--peak", "nan"},       {"--peak", "inf"},
      {"--peak", "measure"},  {"--peak", "1e7"},       {"--peak", "1000 nits"}, {"--white", "0"},
      {"--target-peak", "0"}, {"--knee", "1.5"},       {"--gain", "0"},         {"--preserve", "2"},
      {"--knee", "nan"},      {"--gain", "nan"},       {"--preserve", "nan"},   {"--to", "rec9000"},
      {"--from", "camera"},   {"--algorithm", "best"}, {"--gamut", "reinhard"}};
  for (const auto& [option, value] : refused) {
    const RunResult run = Curve({option, value, folder_ / "a.csv"});
    EXPECT_EQ(run.exitCode, 2) << option << ' ' << value;
    EXPECT_THAT(run.err, Not(IsEmpty()));
  }
  EXPECT_THAT(Curve({"--peak", "-5", folder_ / "a.csv"}).err,
              AllOf(HasSubstr("--peak"), HasSubstr("'-5'"), HasSubstr("nits above 0")));
  EXPECT_EQ(Curve({}).exitCode, 2);
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CurveCommand, TellsWhichFormatsThereAre) {
  const RunResult run = Curve({folder_ / "a.svg", folder_ / "a.pdf"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, AllOf(HasSubstr("a.pdf"), HasSubstr(".svg, .png or .csv")));
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CurveCommand, RefusesOneNameForTwoOutputs) {
  const RunResult run = Curve({folder_ / "a.svg", folder_ / "a.svg"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("named twice"));
}

TEST_F(CurveCommand, TellsThatAColourSpaceIsNotKnown) {
  for (const char* option : {"--to-cicp", "--from-cicp"}) {
    const RunResult run = Curve({option, "9/99/9", folder_ / "a.csv"});
    EXPECT_EQ(run.exitCode, 4) << option;
    EXPECT_THAT(run.err, HasSubstr("9/99/9"));
  }
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CurveCommand, RefusesAnOutputThatExistsBeforeItWritesAnother) {
  WriteFile(folder_ / "a.csv", "mine");
  const std::vector<std::string> outputs = {folder_ / "a.svg", folder_ / "a.csv"};
  const RunResult run = Curve(outputs);
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_THAT(run.err, AllOf(HasSubstr("a.csv"), HasSubstr("--overwrite")));
  EXPECT_EQ(ReadFile(folder_ / "a.csv"), "mine");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.csv"));
  EXPECT_EQ(Curve({"--overwrite", outputs[0], outputs[1]}).exitCode, 0);
  EXPECT_THAT(ReadFile(folder_ / "a.csv"), HasSubstr("source_nits"));
}

TEST_F(CurveCommand, LeavesNothingBehindWhereAnOutputCannotBeWritten) {
  const std::string tooLong = std::string(252, 'n') + ".csv";
  for (const std::string& name : {std::string("absent/a.csv"), tooLong}) {
    const RunResult run = Curve({folder_ / name, folder_ / "a.svg"});
    EXPECT_EQ(run.exitCode, 5) << name;
    EXPECT_THAT(run.err, HasSubstr(name));
    EXPECT_THAT(folder_.Names(), IsEmpty());
  }
}

TEST_F(CurveCommand, TellsWhatTheEngineRefusedAndForWhichAlgorithm) {
  const RunResult run = Curve({"--algorithm", "hue", "--algorithm", "bt2390-rgb", "--gain", "2",
                               "--peak", "10000", "--to", "bt2100-pq", folder_ / "a.csv"});
  EXPECT_EQ(run.exitCode, 6);
  EXPECT_THAT(run.err, AllOf(HasSubstr("--algorithm bt2390-rgb"), HasSubstr("0xA00F000F"),
                             HasSubstr("choose other peaks")));
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(CurveCommand, ExplainsItself) {
  const RunResult run = Curve({"--help"});
  EXPECT_EQ(run.exitCode, 0);
  for (const char* text : {"--hue", "--peak", "1000 when not given", ".svg", "nits"}) {
    EXPECT_THAT(run.out, HasSubstr(text));
  }
  EXPECT_THAT(RunQuillon({"--help"}).out, HasSubstr("curve"));
}

}  // namespace
