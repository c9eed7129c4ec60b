// Runs the probe as a user would: rows in, rows out.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/vectors/Table.h"

namespace {

struct ProbeRun {
  int exitCode = -1;
  std::vector<std::string> out;
};

ProbeRun RunProbe(const std::string& rows, const std::string& option = "") {
  const std::string base = ::testing::TempDir() + "curve-probe-test-" + std::to_string(getpid());
  const std::string in = base + ".in";
  const std::string out = base + ".out";
  std::ofstream(in) << rows;
  const int status = std::system(
      ("'" QUILLON_CURVE_PROBE "' " + option + " < '" + in + "' > '" + out + "'").c_str());
  ProbeRun run;
  if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  std::ifstream lines(out);
  for (std::string line; std::getline(lines, line);) run.out.push_back(line);
  std::filesystem::remove(in);
  std::filesystem::remove(out);
  return run;
}

/// A row of a file of vectors as the probe takes it.
std::string ProbeRow(int type, const vectors::Row& row, int params) {
  std::string text = std::to_string(type);
  for (const char* column : {"p0", "p1", "p2", "p3", "peak", "gain", "cp"}) {
    text += ',' + row.Text(column);
  }
  for (int i = 0; i < params; ++i) text += ',' + row.Text("v" + std::to_string(i));
  return text + '\n';
}

void ExpectVectors(const std::string& file, int type, int params) {
  const std::vector<vectors::Row> rows = vectors::ReadTable(file);
  std::string input;
  for (const vectors::Row& row : rows) input += ProbeRow(type, row, params);
  const ProbeRun run = RunProbe(input);
  ASSERT_EQ(run.exitCode, 0);
  ASSERT_EQ(run.out.size(), rows.size());
  ASSERT_GT(rows.size(), 600U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::vector<std::string> results = vectors::Split(run.out[i], ',');
    ASSERT_EQ(results.size(), 4U);
    for (std::size_t channel = 0; channel < 4; ++channel) {
      EXPECT_TRUE(vectors::SameBits(vectors::ParseNumber(results[channel]),
                                    rows[i].Number("e" + std::to_string(channel))))
          << file << " row " << rows[i].Text("id");
    }
  }
}

TEST(CurveProbe, GivesTheReferenceVectors) {
  ExpectVectors("hue_preserving.csv", 5, 3);
  ExpectVectors("gamut_reinhard.csv", 101, 1);
  ExpectVectors("gamut_desaturation.csv", 102, 3);
}

TEST(CurveProbe, GivesTheSameBitsAsRows) {
  const struct {
    const char* file;
    int type;
    int params;
  } kFiles[] = {{"bt2390_maxrgb.csv", 2, 13},
                {"bt2390_channel.csv", 3, 13},
                {"bt2446a.csv", 4, 4},
                {"hue_preserving.csv", 5, 3},
                {"car.csv", 6, 7},
                {"gamut_reinhard.csv", 101, 1},
                {"gamut_desaturation.csv", 102, 3}};
  for (const auto& file : kFiles) {
    std::string input;
    for (const vectors::Row& row : vectors::ReadTable(file.file)) {
      input += ProbeRow(file.type, row, file.params);
    }
    const ProbeRun pixels = RunProbe(input);
    const ProbeRun rows = RunProbe(input, "--rows");
    EXPECT_EQ(pixels.exitCode, 0) << file.file;
    EXPECT_EQ(rows.exitCode, 0) << file.file;
    EXPECT_GT(rows.out.size(), 600U) << file.file;
    EXPECT_EQ(rows.out, pixels.out) << file.file;
  }
}

TEST(CurveProbe, RefusesOtherOptions) { EXPECT_EQ(RunProbe("", "--pixels").exitCode, 2); }

TEST(CurveProbe, StopsAtARowItCannotRun) {
  const std::string good = "101,1,1,1,1,1,1,0,2\n";
  EXPECT_EQ(RunProbe(good).exitCode, 0);
  for (const char* bad :
       {"101,1,1\n", "101,1,1,1,1,1,1,0\n", "7,1,1,1,1,1,1,0,2\n", "5,1,1,1,1,1,1,0,2,3\n",
        "nan,1,1,1,1,1,1,0,2\n", "101.5,1,1,1,1,1,1,0,2\n", "5,x,1,1,1,1,1,0\n"}) {
    const ProbeRun run = RunProbe(good + bad);
    EXPECT_EQ(run.exitCode, 2) << bad;
    EXPECT_EQ(run.out.size(), 1U) << bad;
  }
}

}  // namespace
