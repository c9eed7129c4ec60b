// What was printed and cannot be written.

#include <array>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/tools/RunQuillon.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A folder with a small chart, and runs whose standard output goes elsewhere.
class LostOutput : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunQuillon({"chart", "--size", "32x32", folder_ / "c.exr"}).exitCode, 0);
  }

  /// Runs `quillon` in a shell, in the folder; `redirection` is the shell's.
  RunResult RunInShell(const std::string& arguments, const std::string& redirection) {
    const std::string command = "cd '" + (folder_ / "").string() +
                                "' && { '" QUILLON_EXECUTABLE "' " + arguments + "; echo $? > '" +
                                (streams_ / "rc").string() + "'; } 2> '" +
                                (streams_ / "err").string() + "' " + redirection;
    if (std::system(command.c_str()) == -1) throw std::runtime_error("no shell");
    return {std::stoi(ReadFile(streams_ / "rc")), {}, ReadFile(streams_ / "err")};
  }

  ScratchFolder folder_;
  ScratchFolder streams_;
};

void ExpectLost(const RunResult& run, const std::string& command) {
  EXPECT_EQ(run.exitCode, 5) << command << ": " << run.err;
  EXPECT_THAT(run.err, HasSubstr("quillon: standard output: what was printed is lost")) << command;
}

constexpr std::array<const char*, 11> kPrinting = {"--help",
                                                   "--version",
                                                   "map --help",
                                                   "devices",
                                                   "inspect c.exr",
                                                   "inspect --json - c.exr",
                                                   "compare c.exr c.exr",
                                                   "compare --json - c.exr c.exr",
                                                   "map --overwrite --explain c.exr o.png",
                                                   "curve --overwrite c.csv",
                                                   "lut --overwrite --size 17 --explain l.cube"};

}  // namespace

TEST_F(LostOutput, IsAnErrorOnAFullDisk) {
  for (const char* command : kPrinting) ExpectLost(RunInShell(command, "> /dev/full"), command);
  EXPECT_THAT(RunInShell("inspect c.exr", "> /dev/full").err, HasSubstr("No space left on device"));
}

TEST_F(LostOutput, IsAnErrorWhereStandardOutputIsClosed) {
  for (const char* command : kPrinting) ExpectLost(RunInShell(command, ">&-"), command);
}

TEST_F(LostOutput, IsAnErrorWhereTheReaderHasGone) {
  for (const char* command : kPrinting) {
    // The reader ends first, then the program begins to print.
    ExpectLost(RunInShell("--version > /dev/null; sleep 0.2; '" QUILLON_EXECUTABLE "' " +
                              std::string(command),
                          "| true"),
               command);
  }
}

TEST_F(LostOutput, LeavesTheOutputFileWholeAndSaysSo) {
  const RunResult run = RunInShell("map c.exr o.png", "> /dev/full");
  ExpectLost(run, "map");
  EXPECT_THAT(run.err, HasSubstr("(o.png is written)"));
  EXPECT_EQ(RunQuillon({"inspect", folder_ / "o.png"}).exitCode, 0);
  EXPECT_THAT(folder_.Names(), ElementsAre("c.exr", "o.png"));
}

TEST_F(LostOutput, NeverGoesIntoTheOutputFileInstead) {
  const std::string streams = ">&- <&-";
  ASSERT_EQ(RunInShell("map c.exr whole.png", "> /dev/null").exitCode, 0);
  ExpectLost(RunInShell("map c.exr o.png", streams), "map");
  EXPECT_EQ(ReadFile(folder_ / "o.png"), ReadFile(folder_ / "whole.png"));
}

TEST_F(LostOutput, IsNoErrorWhereNothingWasPrinted) {
  EXPECT_EQ(RunInShell("map --quiet c.exr o.png", "> /dev/full").exitCode, 0);
  EXPECT_EQ(RunInShell("map --quiet --overwrite c.exr o.png", ">&-").exitCode, 0);
}

TEST_F(LostOutput, OfStandardErrorIsAnErrorToo) {
  // The chart says that its 1.0 is 203 nits, which a note tells.
  const std::string arguments = "map --white 100 c.exr o.png";
  const RunResult run = RunInShell(arguments + " 2> /dev/full", "> /dev/null");
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(LostOutput, LeavesTheCodeOfAnotherFailure) {
  EXPECT_EQ(RunInShell("map absent.exr o.png", "> /dev/full").exitCode, 3);
}
