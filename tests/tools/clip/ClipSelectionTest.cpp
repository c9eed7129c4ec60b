#include <gmock/gmock.h>

#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace {

using testing::HasSubstr;

/// The clip mapped without loss.
std::filesystem::path Map(const ScratchFolder& folder, const std::filesystem::path& clip,
                          const std::string& name, const std::vector<std::string>& options = {}) {
  std::vector<std::string> words = {"map", "--codec", "ffv1", clip, folder / name};
  words.insert(words.end(), options.begin(), options.end());
  const RunResult run = RunQuillon(words);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  return folder / name;
}

TEST(ClipSelection, ChunksJoinedEqualTheWholeRun) {
  const ScratchFolder folder;
  // Long groups of pictures, so that chunks begin in their midst.
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "50"});
  AddSound(clip, folder / "sound.mkv");
  const auto sound = folder / "sound.mkv";
  const auto whole = Map(folder, sound, "whole.mkv");
  std::vector<std::string> frames;
  std::vector<std::string> packets;
  for (const std::string part : {"1", "2", "3", "4"}) {
    const auto chunk = Map(folder, sound, "chunk" + part + ".mkv", {"--chunk", part + "/4"});
    const auto decoded = DecodeClip(chunk);
    EXPECT_NEAR(decoded.front().seconds, 0.0, 1e-3);
    for (const std::string& samples : SamplesOf(decoded)) frames.push_back(samples);
    for (const auto& packet : PacketsOf(chunk, AVMEDIA_TYPE_AUDIO)) packets.push_back(packet.bytes);
  }
  EXPECT_EQ(frames, SamplesOf(DecodeClip(whole)));
  std::vector<std::string> wholePackets;
  for (const auto& packet : PacketsOf(whole, AVMEDIA_TYPE_AUDIO)) {
    wholePackets.push_back(packet.bytes);
  }
  EXPECT_EQ(packets, wholePackets);
}

TEST(ClipSelection, FramesAreThoseThatWereAskedFor) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "30"});
  const auto whole = DecodeClip(Map(folder, clip, "whole.mkv"));
  const auto picked = DecodeClip(Map(folder, clip, "picked.mkv", {"--frames", "26-27,3,10-12"}));
  const std::vector<std::size_t> expected = {3, 10, 11, 12, 26, 27};
  ASSERT_EQ(picked.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(picked[i].samples, whole[expected[i]].samples) << i;
    EXPECT_NEAR(picked[i].seconds, static_cast<double>(i) / 24.0, 2e-3);
  }
}

TEST(ClipSelection, OfFramesThatAreNotThereIsRefused) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "5"});
  RunResult run = RunQuillon({"map", "--frames", "3-5", clip, folder / "out.mp4"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("has 5 frames; --frames goes to 5, the last is 4"));
  run = RunQuillon({"map", "--chunk", "1/9", clip, folder / "out.mp4"});
  EXPECT_EQ(run.exitCode, 2);
  for (const std::string text : {"5-3", "a", "1,,2", "-4"}) {
    EXPECT_EQ(RunQuillon({"map", "--frames", text, clip, folder / "out.mp4"}).exitCode, 2) << text;
  }
  for (const std::string text : {"0/4", "5/4", "1", "1/"}) {
    EXPECT_EQ(RunQuillon({"map", "--chunk", text, clip, folder / "out.mp4"}).exitCode, 2) << text;
  }
}

}  // namespace
