// Which libraries a run loads: FFmpeg, cairo, libavif and the loaders of GPUs only where they are
// needed.

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include "tests/tools/RunQuillon.h"

namespace fs = std::filesystem;

namespace {

using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

/// The libraries that a run of the command line starts with or opens later, by the words of the
/// system's dynamic loader.
std::vector<std::string> LibrariesOf(const std::vector<std::string>& arguments) {
  const ScratchFolder folder;
  ::setenv("LD_DEBUG", "files", 1);
  ::setenv("LD_DEBUG_OUTPUT", (folder / "loader").c_str(), 1);
  const RunResult run = RunQuillon(arguments);
  ::unsetenv("LD_DEBUG");
  ::unsetenv("LD_DEBUG_OUTPUT");
  EXPECT_EQ(run.exitCode, 0) << run.err;

  std::vector<std::string> libraries;
  for (const std::string& name : folder.Names()) {
    std::istringstream lines(ReadFile(folder / name));
    const std::string mark = "calling init: ";
    for (std::string line; std::getline(lines, line);) {
      const std::size_t at = line.find(mark);
      if (at == std::string::npos) continue;
      libraries.push_back(fs::path(line.substr(at + mark.size())).filename());
    }
  }
  return libraries;
}

constexpr const char* kFFmpeg[] = {"libavformat.so", "libavcodec.so", "libavutil.so",
                                   "libswscale.so"};

void ExpectNoneOfFFmpeg(const std::vector<std::string>& libraries) {
  for (const char* library : kFFmpeg) EXPECT_THAT(libraries, Not(Contains(StartsWith(library))));
}

void ExpectStillLibrariesAlone(const std::vector<std::string>& libraries) {
  EXPECT_THAT(libraries, Contains(StartsWith("libQuillon.so"))) << "it is no list of libraries";
  ExpectNoneOfFFmpeg(libraries);
  for (const char* library : {"libcairo.so", "libavif.so", "libOpenCL.so", "libcuda.so"}) {
    EXPECT_THAT(libraries, Not(Contains(StartsWith(library))));
  }
}

class StartUp : public testing::Test {
 protected:
  std::string MakeChart(const std::string& name) {
    EXPECT_EQ(RunQuillon({"chart", "--size", "32x18", folder_ / name}).exitCode, 0);
    return folder_ / name;
  }

  ScratchFolder folder_;
};

TEST_F(StartUp, LoadsNoLibraryOfClipsPlotsAvifOrGPUs) {
  ExpectStillLibrariesAlone(LibrariesOf({"--version"}));
}

TEST_F(StartUp, LoadsNoneOfThemForMappingAStillEither) {
  for (const std::string name : {"chart.png", "chart.exr"}) {
    const std::string chart = MakeChart(name);
    ExpectStillLibrariesAlone(LibrariesOf({"map", "--overwrite", chart, folder_ / "out.png"}));
  }
}

TEST_F(StartUp, LoadsNoneOfThemForInspectingAndComparingStills) {
  const std::string chart = MakeChart("chart.png");
  ExpectStillLibrariesAlone(LibrariesOf({"inspect", "--measure", chart}));
  ExpectStillLibrariesAlone(LibrariesOf({"compare", chart, chart}));
}

TEST_F(StartUp, LoadsLibavifAloneForAvif) {
  const std::vector<std::string> libraries =
      LibrariesOf({"map", MakeChart("chart.avif"), folder_ / "out.png"});
  EXPECT_THAT(libraries, Contains(StartsWith("libavif.so")));
  EXPECT_THAT(libraries, Not(Contains(StartsWith("libcairo.so"))));
  ExpectNoneOfFFmpeg(libraries);
}

TEST_F(StartUp, LoadsCairoAloneForPlots) {
  const std::vector<std::string> libraries = LibrariesOf({"curve", folder_ / "curves.svg"});
  EXPECT_THAT(libraries, Contains(StartsWith("libcairo.so")));
  EXPECT_THAT(libraries, Not(Contains(StartsWith("libavif.so"))));
  ExpectNoneOfFFmpeg(libraries);
}

TEST_F(StartUp, LoadsFFmpegForClips) {
  const std::vector<std::string> libraries =
      LibrariesOf({"chart", "--video", "--frames", "1", "--size", "64x36", folder_ / "clip.mp4"});
  for (const char* library : kFFmpeg) EXPECT_THAT(libraries, Contains(StartsWith(library)));
}

TEST_F(StartUp, TakesWhatModulesThrowForWhatItIs) {
  const fs::path still = MakeChart("chart.avif");
  fs::resize_file(still, fs::file_size(still) / 2);
  const RunResult damaged = RunQuillon({"map", still, folder_ / "out.png"});
  EXPECT_EQ(damaged.exitCode, 3) << "a StillError of libavif's module: " << damaged.err;
  EXPECT_THAT(damaged.err, StartsWith("quillon: " + still.string() + ": "));

  const RunResult missing = RunQuillon({"map", folder_ / "none.mp4", folder_ / "out.mp4"});
  EXPECT_EQ(missing.exitCode, 3) << "a CommandError of the clips' module: " << missing.err;
}

TEST_F(StartUp, OpensTheLoaderOfOpenClForListingDevices) {
  EXPECT_THAT(LibrariesOf({"devices"}), Contains(StartsWith("libOpenCL.so")));
}

}  // namespace
