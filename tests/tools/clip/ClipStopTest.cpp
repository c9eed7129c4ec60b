#include <chrono>
#include <csignal>

#include <gmock/gmock.h>

#include "tests/tools/clip/FileWatch.h"
#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

using testing::HasSubstr;
using Clock = std::chrono::steady_clock;

class ClipStop : public testing::Test {
 protected:
  ClipStop() {
    Encoding encoding = GreyEncoding();
    encoding.width = 640;
    encoding.height = 360;
    WriteGreyClip(folder_ / "plain.mkv", encoding, 200, 300);
    AddSound(folder_ / "plain.mkv", folder_ / "clip.mkv");
  }

  std::vector<std::string> Words(const std::string& output, const std::string& codec) const {
    return {"map", "--codec", codec, folder_ / "clip.mkv", folder_ / output};
  }

  void ExpectWhole(const std::string& output, const std::string& codec) {
    auto words = Words("whole-" + output, codec);
    ASSERT_EQ(RunQuillon(words).exitCode, 0);
    const auto whole = DecodeClip(folder_ / ("whole-" + output));
    const auto resumed = DecodeClip(folder_ / output);
    EXPECT_EQ(resumed.size(), 200U);
    EXPECT_EQ(TimesOf(resumed), TimesOf(whole));
    if (codec == "ffv1") {
      EXPECT_EQ(SamplesOf(resumed), SamplesOf(whole));
    }
    EXPECT_EQ(PacketsOf(folder_ / output, AVMEDIA_TYPE_AUDIO),
              PacketsOf(folder_ / ("whole-" + output), AVMEDIA_TYPE_AUDIO));
    EXPECT_FALSE(fs::exists(folder_ / "out.part.mkv"));
  }

  ScratchFolder folder_;
};

TEST_F(ClipStop, AKilledRunIsResumed) {
  for (const auto& [codec, output] :
       std::vector<std::pair<std::string, std::string>>{{"ffv1", "out.mkv"}, {"h264", "out.mp4"}}) {
    const pid_t process = StartQuillon(Words(output, codec));
    const auto part = folder_ / (codec == "ffv1" ? "out.part.mkv" : "out.part.mp4");
    ASSERT_TRUE(WaitForBytes(part, codec == "ffv1" ? 20000 : 4000));
    kill(process, SIGKILL);
    ASSERT_EQ(WaitFor(process), -SIGKILL);
    EXPECT_FALSE(fs::exists(folder_ / output));
    EXPECT_FALSE(DecodePart(part).empty());

    auto words = Words(output, codec);
    words.emplace_back("--resume");
    const RunResult run = RunQuillon(words);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("taken over from an earlier run: "));
    EXPECT_THAT(run.err, testing::Not(HasSubstr("run: 0 frames")));
    ExpectWhole(output, codec);
  }
}

TEST_F(ClipStop, OtherSettingsAreNotMixedIntoAnEarlierRun) {
  const pid_t process = StartQuillon(Words("out.mkv", "ffv1"));
  ASSERT_TRUE(WaitForBytes(folder_ / "out.part.mkv", 20000));
  kill(process, SIGKILL);
  WaitFor(process);
  auto words = Words("out.mkv", "ffv1");
  words.insert(words.end(), {"--resume", "--algorithm", "bt2446a"});
  const RunResult run = RunQuillon(words);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("out.part.mkv was made with other settings"));
}

TEST_F(ClipStop, CtrlCEndsTheRunSoonAndLeavesAPlayablePart) {
  const pid_t process = StartQuillon(Words("out.mkv", "ffv1"));
  ASSERT_TRUE(WaitForBytes(folder_ / "out.part.mkv", 20000));
  const auto begin = Clock::now();
  kill(process, SIGINT);
  EXPECT_EQ(WaitFor(process), 130);
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(2));
  EXPECT_FALSE(fs::exists(folder_ / "out.mkv"));
  EXPECT_FALSE(DecodeClip(folder_ / "out.part.mkv").empty());
}

TEST_F(ClipStop, AnImageSequenceIsResumed) {
  const RunResult first =
      RunQuillon({"map", "--frames", "0-2", folder_ / "clip.mkv", folder_ / "f.%02d.png"});
  ASSERT_EQ(first.exitCode, 0) << first.err;
  const auto before = fs::last_write_time(folder_ / "f.01.png");
  const RunResult run = RunQuillon(
      {"map", "--frames", "0-4", "--resume", folder_ / "clip.mkv", folder_ / "f.%02d.png"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(fs::last_write_time(folder_ / "f.01.png"), before);
  EXPECT_TRUE(fs::exists(folder_ / "f.04.png"));
}

TEST_F(ClipStop, AFullDiskIsTold) {
  for (const auto& [codec, output] :
       std::vector<std::pair<std::string, std::string>>{{"ffv1", "out.mkv"}, {"h264", "out.mp4"}}) {
    RunResult run;
    {
      const FileSizeLimit limit(codec == "ffv1" ? 50000 : 5000);
      run = RunQuillon(Words(output, codec));
    }
    EXPECT_EQ(run.exitCode, 5) << run.err;
    EXPECT_THAT(run.err, HasSubstr("writing failed"));
    EXPECT_THAT(run.err, HasSubstr("make room on the disk"));
    EXPECT_FALSE(fs::exists(folder_ / output));
  }
}

TEST_F(ClipStop, ADeviceIsNoOutput) {
  const RunResult run = RunQuillon({"map", folder_ / "clip.mkv", "/dev/full"});
  EXPECT_EQ(run.exitCode, 4);
  fs::create_symlink("/dev/full", folder_ / "full.mkv");
  const RunResult device = RunQuillon({"map", folder_ / "clip.mkv", folder_ / "full.mkv"});
  EXPECT_EQ(device.exitCode, 5);
  EXPECT_THAT(device.err, HasSubstr("it is no regular file"));
}

}  // namespace
