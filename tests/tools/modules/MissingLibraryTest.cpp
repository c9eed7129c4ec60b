// What the command line does where modules of its own, or libraries that only some commands need,
// are not there.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include "tests/tools/RunQuillon.h"

namespace fs = std::filesystem;

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

/// A copy of the program in a tree of its own, which has no modules.
class MissingLibrary : public testing::Test {
 protected:
  MissingLibrary() {
    fs::create_directories(folder_ / "tree/bin");
    fs::create_directories(modules_);
    fs::copy_file(QUILLON_EXECUTABLE, program_);
    ::setenv("LD_LIBRARY_PATH", (folder_ / "first").c_str(), 1);
    fs::create_directories(folder_ / "first");
  }
  ~MissingLibrary() override { ::unsetenv("LD_LIBRARY_PATH"); }

  RunResult Run(const std::vector<std::string>& arguments) const {
    return RunProgram(program_, arguments);
  }

  /// A file of the build, every `from` in it `to`, which is as long.
  static void CopyChanged(const fs::path& file, const fs::path& copy, const std::string& from,
                          const std::string& to) {
    std::string bytes = ReadFile(file);
    ASSERT_NE(bytes.find(from), std::string::npos) << file << " does not name " << from;
    for (std::size_t at = 0; (at = bytes.find(from, at)) != std::string::npos;) {
      bytes.replace(at, from.size(), to);
    }
    WriteFile(copy, bytes);
  }

  ScratchFolder folder_;
  const fs::path program_ = folder_ / "tree/bin/quillon";
  const fs::path modules_ = folder_ / "tree/lib/quillon";
};

TEST_F(MissingLibrary, LeavesStillsAsTheyAre) {
  const std::string chart = folder_ / "chart.exr";
  const std::string png = folder_ / "chart.png";
  ASSERT_EQ(Run({"chart", "--size", "32x18", chart}).exitCode, 0);
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"map", chart, png},
                                                    {"inspect", "--measure", png},
                                                    {"compare", png, png},
                                                    {"curve", folder_ / "curves.csv"},
                                                    {"devices"},
                                                    {"--version"}}) {
    const RunResult run = Run(arguments);
    EXPECT_EQ(run.exitCode, 0) << arguments.front() << ": " << run.err;
  }
  EXPECT_EQ(RunQuillon({"map", chart, folder_ / "whole.png"}).exitCode, 0);
  EXPECT_EQ(ReadFile(png), ReadFile(folder_ / "whole.png"));
}

TEST_F(MissingLibrary, IsToldWithTheFileTheReasonAndTheRemedy) {
  const struct {
    const char* module;
    const char* need;
    std::vector<std::string> arguments;
  } cases[] = {
      {"clips.so",
       "clips and image sequences",
       {"chart", "--video", "--frames", "1", folder_ / "clip.mp4"}},
      {"avif.so", "AVIF pictures", {"chart", folder_ / "chart.avif"}},
      {"drawing.so", "plots and captions", {"curve", folder_ / "curves.svg"}},
  };
  for (const auto& [module, need, arguments] : cases) {
    const std::string file = modules_ / module;
    const RunResult run = Run(arguments);
    EXPECT_EQ(run.exitCode, 4) << module;
    EXPECT_EQ(run.err, "quillon: " + file + ": it is needed for " + need +
                           " and cannot be loaded (" + file +
                           ": cannot open shared object file: No such file or directory); install "
                           "what is missing there, or quillon again with all its files\n");
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_FALSE(fs::exists(arguments.back()));
  }
}

TEST_F(MissingLibrary, IsNamedWhereAModuleWantsIt) {
  CopyChanged(QUILLON_CLIPS_MODULE, modules_ / "clips.so", "libavformat.so.", "libavformat.no.");
  const RunResult run = Run({"chart", "--video", "--frames", "1", folder_ / "clip.mp4"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, AllOf(HasSubstr(modules_ / "clips.so"), HasSubstr("(libavformat.no."),
                             HasSubstr("cannot open shared object")));
}

TEST_F(MissingLibrary, MayBeAFileThatIsNoModule) {
  fs::copy_file(fs::path(QUILLON_LIBRARY_FOLDER) / "libhostos.so", modules_ / "clips.so");
  const RunResult run = Run({"chart", "--video", "--frames", "1", folder_ / "clip.mp4"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, AllOf(HasSubstr(modules_ / "clips.so"),
                             HasSubstr("undefined symbol: QuillonModule")));
}

TEST_F(MissingLibrary, OfOpenClMeansThatItHasNoDevices) {
  WriteFile(folder_ / "first/libOpenCL.so.1", "");  // found before the system's, and no library
  const RunResult devices = Run({"devices"});
  EXPECT_EQ(devices.exitCode, 0) << devices.err;
  EXPECT_EQ(devices.out.find("opencl:"), std::string::npos) << devices.out;

  const std::string chart = folder_ / "chart.png";
  ASSERT_EQ(Run({"chart", "--size", "32x18", chart}).exitCode, 0);
  EXPECT_EQ(Run({"map", chart, folder_ / "cpu.png"}).exitCode, 0);
  const RunResult gpu = Run({"map", "--device", "opencl:0", chart, folder_ / "gpu.png"});
  EXPECT_EQ(gpu.exitCode, 4);
  EXPECT_THAT(gpu.err, HasSubstr("opencl:0"));
}

}  // namespace
