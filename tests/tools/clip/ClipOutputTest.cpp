#include <chrono>
#include <csignal>
#include <map>

#include <gmock/gmock.h>

#include "tests/tools/clip/FileWatch.h"
#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

class ClipOutput : public testing::Test {
 protected:
  /// A clip of grey frames outside the folder that is written to.
  std::string Source(int width = 128, int height = 96, int frames = 6) {
    Encoding encoding = GreyEncoding();
    encoding.width = width;
    encoding.height = height;
    const fs::path path = sources_ / (std::to_string(frames) + ".mkv");
    if (!fs::exists(path)) WriteGreyClip(path, encoding, frames, 300);
    return path;
  }
  std::string LongSource() { return Source(640, 360, 200); }

  ScratchFolder sources_;
  ScratchFolder folder_;
};

TEST_F(ClipOutput, EveryCodecGoesIntoTheContainersThatHoldIt) {
  const std::map<std::string, Words> holders = {{"h264", {"mp4", "mov", "mkv"}},
                                                {"hevc", {"mp4", "mov", "mkv"}},
                                                {"av1", {"mp4", "mkv", "webm"}},
                                                {"ffv1", {"mkv"}},
                                                {"prores", {"mov", "mkv"}}};
  for (const auto& [codec, held] : holders) {
    for (const std::string container : {"mp4", "mov", "mkv", "webm"}) {
      const ScratchFolder folder;
      const std::string name = "a." + container;
      const RunResult run = RunQuillon({"map", "--codec", codec, Source(), folder / name});
      if (std::find(held.begin(), held.end(), container) != held.end()) {
        EXPECT_EQ(run.exitCode, 0) << codec << ' ' << container << ": " << run.err;
        EXPECT_THAT(folder.Names(), ElementsAre(name));
      } else {
        EXPECT_EQ(run.exitCode, 4) << codec << ' ' << container << ": " << run.err;
        EXPECT_THAT(run.err, HasSubstr("." + container + " files do not hold " + codec));
        EXPECT_THAT(folder.Names(), IsEmpty());
      }
    }
  }
}

TEST_F(ClipOutput, NothingIsLeftOfARunThatGotNoFrameIntoItsFile) {
  const std::string clip = Source();
  for (const std::string codec : {"h264", "hevc", "av1", "ffv1"}) {
    for (const std::string name : {"a.mkv", "a.mp4"}) {
      if (codec == "ffv1" && name == "a.mp4") continue;
      RunResult run;
      {
        const FileSizeLimit limit(0);
        run = RunQuillon({"map", "--codec", codec, clip, folder_ / name});
      }
      EXPECT_EQ(run.exitCode, 5) << codec << ' ' << name << run.err;
      EXPECT_THAT(folder_.Names(), IsEmpty()) << codec << ' ' << name;
    }
  }
}

TEST_F(ClipOutput, AFullDiskIsToldByEveryWriter) {
  const std::string clip = Source();
  const std::string still = sources_ / "a.exr";
  ASSERT_EQ(RunQuillon({"chart", "--size", "64x48", still}).exitCode, 0);
  const std::vector<Words> runs = {{"chart", "--size", "192x108", "--video", folder_ / "a.mp4"},
                                   {"chart", "--size", "192x108", "--video", folder_ / "a.mov"},
                                   {"chart", "--size", "192x108", "--video", folder_ / "a.mkv"},
                                   {"map", "--codec", "av1", clip, folder_ / "a.webm"},
                                   {"map", "--frames", "0-1", LongSource(), folder_ / "%d.png"},
                                   {"map", still, folder_ / "a.png"},
                                   {"map", still, folder_ / "a.exr"},
                                   {"map", still, folder_ / "a.avif"},
                                   {"chart", folder_ / "a.png"},
                                   {"curve", folder_ / "a.svg"},
                                   {"curve", folder_ / "a.png"},
                                   {"curve", folder_ / "a.csv"},
                                   {"lut", "--size", "17", folder_ / "a.cube"},
                                   {"compare", "--json", folder_ / "a.json", still, still},
                                   {"compare", still, still, folder_ / "a.png"},
                                   {"inspect", "--measure", "--json", folder_ / "a.json", clip},
                                   {"inspect", "--sheet", folder_ / "a.png", clip},
                                   {"inspect", "--plot", folder_ / "a.svg", still}};
  for (const Words& words : runs) {
    RunResult run;
    {
      const FileSizeLimit limit(600);  // more than the message is
      run = RunQuillon(words);
    }
    EXPECT_EQ(run.exitCode, 5) << words[0] << ' ' << words.back() << ": " << run.err;
    EXPECT_THAT(run.err, HasSubstr("make room on the disk")) << words[0] << ' ' << words.back();
    EXPECT_THAT(folder_.Names(), IsEmpty()) << words[0] << ' ' << words.back();
  }
}

TEST_F(ClipOutput, BelongsToOneRunAtATime) {
  const std::string output = folder_ / "a.mkv";
  const pid_t first = StartQuillon({"map", "--codec", "ffv1", LongSource(), output});
  ASSERT_TRUE(WaitForBytes(folder_ / "a.part.mkv", 20000));
  kill(first, SIGSTOP);  // so that it outlasts the others
  const std::string holder = "another run (process " + std::to_string(first) + ") is writing it";
  for (const Words& words :
       {Words{"map", Source(), output}, Words{"map", "--overwrite", Source(), output},
        Words{"map", "--resume", Source(), output}, Words{"chart", "--video", output}}) {
    const RunResult run = RunQuillon(words);
    EXPECT_EQ(run.exitCode, 5) << run.err;
    EXPECT_THAT(run.err, HasSubstr(holder));
  }
  kill(first, SIGCONT);
  EXPECT_EQ(WaitFor(first), 0);
  EXPECT_EQ(DecodeClip(output).size(), 200U);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.mkv"));
}

TEST_F(ClipOutput, IsFreeAgainWhenItsRunWasKilled) {
  const std::string output = folder_ / "a.mkv";
  const pid_t first = StartQuillon({"map", "--codec", "ffv1", LongSource(), output});
  ASSERT_TRUE(WaitForBytes(folder_ / "a.part.mkv", 20000));
  kill(first, SIGKILL);
  WaitFor(first);
  EXPECT_TRUE(fs::exists(folder_ / "a.part.mkv.lock"));
  const RunResult run = RunQuillon({"map", Source(), output});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(folder_.Names(), ElementsAre("a.mkv"));
}

TEST_F(ClipOutput, PicturesOfASequenceBelongToOneRunAtATime) {
  const std::string output = folder_ / "%03d.png";
  const pid_t first = StartQuillon({"map", "--frames", "0-99", LongSource(), output});
  ASSERT_TRUE(WaitUntil([&] { return fs::exists(folder_ / "000.png"); }));
  const RunResult same =
      RunQuillon({"map", "--frames", "99-100", "--overwrite", LongSource(), output});
  const RunResult other =
      RunQuillon({"map", "--frames", "150-151", "--overwrite", LongSource(), output});
  EXPECT_EQ(same.exitCode, 5);
  EXPECT_THAT(same.err, HasSubstr("another run (process " + std::to_string(first)));
  EXPECT_EQ(other.exitCode, 0) << other.err;
  EXPECT_EQ(WaitFor(first), 0);
  EXPECT_EQ(folder_.Names().size(), 102U);
}

TEST_F(ClipOutput, TakesTheLongestNames) {
  for (const std::size_t length : {229U, 240U, 255U}) {
    const std::string name = std::string(length - 4, 'a') + ".mp4";
    const RunResult run = RunQuillon({"map", Source(), folder_ / name});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const std::string again = std::string(length - 4, 'b') + ".mkv";
    const RunResult measured =
        RunQuillon({"map", "--peak", "measure", folder_ / name, folder_ / again});
    EXPECT_EQ(measured.exitCode, 0) << measured.err;
    EXPECT_THAT(measured.err, testing::Not(HasSubstr("are not kept")));
    EXPECT_EQ(folder_.Names().size(), 3U);
    for (const std::string& left : folder_.Names()) fs::remove(folder_ / left);
  }
}

TEST_F(ClipOutput, OfTheLongestNameIsResumed) {
  const std::string output = folder_ / (std::string(251, 'a') + ".mkv");
  const pid_t first = StartQuillon({"map", "--codec", "ffv1", LongSource(), output});
  ASSERT_TRUE(WaitUntil([&] {
    for (const std::string& name : folder_.Names()) {
      std::error_code gone;
      if (name.ends_with(".part.mkv") && fs::file_size(folder_ / name, gone) > 20000 && !gone) {
        return true;
      }
    }
    return false;
  }));
  kill(first, SIGKILL);
  WaitFor(first);
  const RunResult run = RunQuillon({"map", "--codec", "ffv1", "--resume", LongSource(), output});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, testing::Not(HasSubstr("run: 0 frames")));
  EXPECT_EQ(DecodeClip(output).size(), 200U);
  EXPECT_EQ(folder_.Names().size(), 1U);
}

TEST_F(ClipOutput, FramesOfOtherSettingsDoNotComeBackFromAnOlderRun) {
  WriteFile(folder_ / "a.part-earlier.mkv", ReadFile(LongSource()));
  WriteFile(folder_ / "a.part.mkv.txt", "the note of a run with other settings\n");
  const pid_t process = StartQuillon({"map", "--codec", "ffv1", LongSource(), folder_ / "a.mkv"});
  ASSERT_TRUE(WaitForBytes(folder_ / "a.part.mkv", 20000));
  EXPECT_FALSE(fs::exists(folder_ / "a.part-earlier.mkv"));
  kill(process, SIGKILL);
  WaitFor(process);
}

TEST_F(ClipOutput, ThatIsTheInputIsRefused) {
  const std::string clip = folder_ / "a.mkv";
  fs::copy_file(Source(), clip);
  const std::string still = folder_ / "a.exr";
  ASSERT_EQ(RunQuillon({"chart", "--size", "64x48", still}).exitCode, 0);
  const std::string stillBefore = ReadFile(still);
  const std::string clipBefore = ReadFile(clip);
  fs::create_symlink(still, folder_ / "link.exr");
  fs::create_hard_link(still, folder_ / "hard.exr");
  fs::create_hard_link(still, folder_ / "hard.png");
  fs::copy_file(still, folder_ / "s.5.exr");
  const std::string dotted = folder_ / "." / "a.exr";
  for (const Words& words :
       {Words{"map", still, still}, Words{"map", still, dotted},
        Words{"map", still, folder_ / "link.exr"}, Words{"map", still, folder_ / "hard.exr"},
        Words{"map", clip, clip}, Words{"map", folder_ / "s.%d.exr", folder_ / "s.%d.exr"},
        Words{"map", folder_ / "s.5.exr", folder_ / "s.5.exr"},
        Words{"map", "--in-place", folder_ / "s.%d.exr", folder_ / "s.%d.exr"},
        Words{"compare", still, clip, folder_ / "hard.png"},
        Words{"compare", clip, still, "--json", still},
        Words{"inspect", still, "--sheet", folder_ / "hard.png"},
        Words{"inspect", still, "--json", still}}) {
    Words overwriting = words;
    overwriting.emplace_back("--overwrite");
    const RunResult run = RunQuillon(overwriting);
    EXPECT_EQ(run.exitCode, 2) << words[0] << ' ' << words.back() << ": " << run.err;
    EXPECT_THAT(run.err, HasSubstr("choose another name"));
  }
  EXPECT_EQ(ReadFile(still), stillBefore);
  EXPECT_EQ(ReadFile(clip), clipBefore);
}

TEST_F(ClipOutput, ReplacesTheInputWhereThatIsAskedFor) {
  const std::string clip = folder_ / "a.mkv";
  fs::copy_file(Source(), clip);
  const std::string still = folder_ / "a.exr";
  ASSERT_EQ(RunQuillon({"chart", "--size", "64x48", still}).exitCode, 0);
  for (const std::string& path : {clip, still}) {
    const ScratchFolder elsewhere;
    const std::string expected = elsewhere / fs::path(path).filename().string();
    ASSERT_EQ(RunQuillon({"map", path, expected}).exitCode, 0);
    const RunResult run = RunQuillon({"map", "--in-place", path, path});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    if (path == clip) {
      EXPECT_EQ(SamplesOf(DecodeClip(path)), SamplesOf(DecodeClip(expected)));
    } else {
      EXPECT_EQ(ReadFile(path), ReadFile(expected));
    }
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("a.exr", "a.mkv"));
  const RunResult other = RunQuillon({"map", "--in-place", still, folder_ / "b.exr"});
  EXPECT_EQ(other.exitCode, 2);
  EXPECT_THAT(other.err, HasSubstr("--in-place has no effect"));
}

TEST_F(ClipOutput, SigtermEndsARunAsCtrlCDoes) {
  const std::string output = folder_ / "a.mkv";
  const Words words = {"map", "--codec", "ffv1", LongSource(), output};
  const pid_t process = StartQuillon(words);
  ASSERT_TRUE(WaitForBytes(folder_ / "a.part.mkv", 20000));
  kill(process, SIGTERM);
  EXPECT_EQ(WaitFor(process), 143);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.part.mkv", "a.part.mkv.txt"));
  Words resumed = words;
  resumed.emplace_back("--resume");
  EXPECT_EQ(RunQuillon(resumed).exitCode, 0);
  EXPECT_EQ(DecodeClip(output).size(), 200U);
}

TEST_F(ClipOutput, SigtermLeavesWholePicturesOfASequence) {
  const pid_t process = StartQuillon({"map", LongSource(), folder_ / "%03d.png"});
  ASSERT_TRUE(WaitUntil([&] { return fs::exists(folder_ / "001.png"); }));
  kill(process, SIGTERM);
  EXPECT_EQ(WaitFor(process), 143);
  for (const std::string& name : folder_.Names()) {
    EXPECT_EQ(name.size(), 7U) << name;
    EXPECT_EQ(RunQuillon({"inspect", folder_ / name}).exitCode, 0) << name;
  }
}

TEST_F(ClipOutput, SigtermEndsMeasuringAndLeavesNothing) {
  const std::string clip = LongSource();
  const pid_t process = StartQuillon({"map", "--peak", "measure", clip, folder_ / "a.mkv"});
  ASSERT_TRUE(WaitForBytes(folder_ / "a.part.mkv.lock", 1));
  kill(process, SIGTERM);
  EXPECT_EQ(WaitFor(process), 143);
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(ClipOutput, SigtermEndsTheChartAndLeavesNothing) {
  const pid_t process = StartQuillon({"chart", "--video", "--frames", "2000", folder_ / "a.mkv"});
  ASSERT_TRUE(WaitForBytes(folder_ / "a.part.mkv.lock", 1));
  kill(process, SIGTERM);
  EXPECT_EQ(WaitFor(process), 143);
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(ClipOutput, NamesThatAreNotUtf8AreDrawnAndListed) {
  const std::string clip = folder_ / "a\xFF.mkv";
  fs::copy_file(Source(), clip);
  for (const char* plot : {"a.svg", "a.png"}) {
    const RunResult run = RunQuillon({"inspect", "--plot", folder_ / plot, "--json", "-", clip});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("a\xEF\xBF\xBD.mkv"));
  }
  EXPECT_THAT(ReadFile(folder_ / "a.svg"), HasSubstr("a\xEF\xBF\xBD.mkv"));
}

}  // namespace
