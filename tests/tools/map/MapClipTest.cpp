#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/video/ClipReader.h"
#include "tools/quillon/video/ClipWriter.h"

using namespace Quillon::Cli;

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

RunResult Map(const std::vector<std::string>& options) {
  std::vector<std::string> words = {"map"};
  words.insert(words.end(), options.begin(), options.end());
  return RunQuillon(words);
}

TEST(MapClip, KeepsTimesSoundChaptersAndTexts) {
  const ScratchFolder folder;
  const auto silent = MakeChartClip(folder, "silent.mp4", {"--frames", "24"});
  for (const std::string extension : {"mkv", "mov"}) {
    const auto clip = folder / ("clip." + extension);
    const auto mapped = folder / ("mapped." + extension);
    AddSound(silent, clip);
    const RunResult run = Map({clip, mapped});
    ASSERT_EQ(run.exitCode, 0) << run.err;

    EXPECT_EQ(TimesOf(DecodeClip(mapped)), TimesOf(DecodeClip(clip))) << extension;
    EXPECT_EQ(PacketsOf(mapped, AVMEDIA_TYPE_AUDIO), PacketsOf(clip, AVMEDIA_TYPE_AUDIO));
    const ClipInput input = OpenClipInput(mapped);
    ASSERT_EQ(input.container->nb_chapters, 2U);
    const AVDictionaryEntry* title =
        av_dict_get(input.container->chapters[1]->metadata, "title", nullptr, 0);
    ASSERT_NE(title, nullptr);
    EXPECT_STREQ(title->value, "Night");
    EXPECT_STREQ(av_dict_get(input.container->metadata, "title", nullptr, 0)->value,
                 "A chart with sound");
  }
}

TEST(MapClip, KeepsAVariableFrameRate) {
  const ScratchFolder folder;
  Encoding encoding = GreyEncoding();
  encoding.timeBase = {1, 1000};
  const std::vector<std::int64_t> times = {0, 40, 50, 140, 141, 300};
  {
    ClipWriter writer(folder / "clip.mkv", encoding, nullptr);
    AvFramePool pool(encoding.pixelFormat, encoding.width, encoding.height);
    for (const std::int64_t time : times) {
      const auto frame = pool.Take();
      std::fill_n(frame->buf[0]->data, frame->buf[0]->size, std::uint8_t{1});
      frame->pts = time;
      writer.WriteFrame(*frame);
    }
    writer.Finish();
  }
  for (const std::string name : {"mapped.mp4", "mapped.mkv"}) {
    const RunResult run = Map({folder / "clip.mkv", folder / name});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::vector<std::int64_t> mapped;
    for (const double seconds : TimesOf(DecodeClip(folder / name))) {
      mapped.push_back(std::llround(seconds * 1000.0));
    }
    EXPECT_EQ(mapped, times) << name;
  }
}

TEST(MapClip, WritesEveryCodec) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "3"});
  const std::vector<std::array<std::string, 4>> cases = {
      {"h264", "mp4", "8", "yuv420p"},      {"hevc", "mkv", "10", "yuv420p10le"},
      {"hevc", "mp4", "12", "yuv420p12le"}, {"av1", "webm", "10", "yuv420p10le"},
      {"ffv1", "mkv", "16", "yuv420p16le"}, {"prores", "mov", "10", "yuv422p10le"}};
  for (const auto& [codec, container, depth, format] : cases) {
    const auto mapped = folder / std::string(codec).append(depth).append(".").append(container);
    const RunResult run = Map({"--codec", codec, "--depth", depth, clip, mapped});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.err, IsEmpty()) << codec;
    const ClipReader reader(mapped);
    EXPECT_EQ(reader.Info().codec, codec);
    EXPECT_EQ(reader.Info().pixelFormat, format);
  }
}

TEST(MapClip, MapsOddSizesAndSamplesOfAllKinds) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "odd.mp4", {"--frames", "2", "--size", "192x108"});
  for (const std::string sampling : {"420", "422", "444", "rgb"}) {
    for (const std::string depth : {"8", "10", "12", "16"}) {
      if (sampling == "rgb" && depth == "8") continue;  // FFV1 takes no such planes
      const auto lossless = folder / (sampling + depth + ".mkv");
      RunResult run = Map({"--to", "bt2100-pq", "--codec", "ffv1", "--chroma", sampling, "--depth",
                           depth, clip, lossless});
      ASSERT_EQ(run.exitCode, 0) << run.err;
      run = Map({lossless, folder / (sampling + depth + ".mp4")});
      EXPECT_EQ(run.exitCode, 0) << run.err;
    }
  }
  Encoding encoding = GreyEncoding();
  encoding.width = 33;
  encoding.height = 17;
  WriteGreyClip(folder / "small.mkv", encoding, 2, 500);
  const RunResult run = Map({folder / "small.mkv", folder / "small.mp4"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(ClipReader(folder / "small.mp4").Info().pixelFormat, "yuv444p");
}

TEST(MapClip, ReadsAndWritesImageSequences) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "3"});
  RunResult run = Map({"--to", "bt2100-pq", clip, folder / "frame.%03d.png"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(folder.Names(),
              testing::IsSupersetOf({"frame.000.png", "frame.001.png", "frame.002.png"}));
  EXPECT_EQ(ReadStill(folder / "frame.001.png").frame->GetBounds().width, 192);

  run = Map({"--fps", "12", folder / "frame.%03d.png", folder / "again.mkv"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(TimesOf(DecodeClip(folder / "again.mkv")),
              testing::Pointwise(testing::DoubleNear(1e-3), {0.0, 1.0 / 12.0, 2.0 / 12.0}));

  run = Map({clip, folder / "frame.%03d.png"});
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_THAT(run.err, HasSubstr("frame.000.png: pictures of this sequence exist already (3)"));
}

TEST(MapClip, GivesTheSameBitsOnEveryDevice) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "4"});
  const RunResult devices = RunQuillon({"devices"});
  if (devices.out.find("opencl:0") == std::string::npos) GTEST_SKIP() << "no OpenCL device";
  for (const std::string algorithm : {"hue", "bt2446a"}) {
    const std::vector<std::string> shared = {"--overwrite", "--codec", "ffv1",
                                             "--algorithm", algorithm, clip};
    auto onCpu = shared;
    onCpu.push_back(folder / "cpu.mkv");
    auto onGPU = shared;
    onGPU.insert(onGPU.end(), {"--device", "opencl:0", folder / "gpu.mkv"});
    ASSERT_EQ(Map(onCpu).exitCode, 0);
    const RunResult run = Map(onGPU);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(DecodeClip(folder / "gpu.mkv"), DecodeClip(folder / "cpu.mkv")) << algorithm;
  }
}

TEST(MapClip, ReportsProgressAsJsonLines) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "8"});
  const RunResult run = Map({"--progress", "json", clip, folder / "mapped.mp4"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  std::istringstream lines(run.err);
  nlohmann::json last;
  for (std::string line; std::getline(lines, line);) {
    last = nlohmann::json::parse(line);
    EXPECT_EQ(last.at("work"), "map");
    EXPECT_EQ(last.at("total"), 8);
  }
  EXPECT_EQ(last.at("done"), 8);
  EXPECT_EQ(last.at("frame"), 7);
  EXPECT_EQ(last.at("finished"), true);
}

TEST(MapClip, PrintsNothingWhenQuiet) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "2"});
  const RunResult run = Map({"--quiet", "--peak", "measure", clip, folder / "mapped.mp4"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, IsEmpty());
}

TEST(MapClip, DryRunExplainsAndWritesNothing) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "2"});
  const RunResult run = Map({"--dry-run", clip, folder / "mapped.mp4"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("4000 nits"));
  EXPECT_THAT(run.out, HasSubstr("encoder           h264, yuv420p, quality 18, preset medium"));
  EXPECT_THAT(folder.Names(), testing::ElementsAre("clip.mp4"));
}

TEST(MapClip, RefusesTheMatrixOfRgbForSubsampledSamples) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "rgb.mkv", {"--frames", "2"});
  const RunResult run = RunQuillon({"map", "--from-cicp", "1/13/0", clip, folder / "rgb.%d.png"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err,
              HasSubstr("its samples are YCbCr, and the matrix 0 of --from-cicp says RGB"));
}

TEST(MapClip, RefusesWhatHasNoEffectOrNoMeaning) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "2"});
  const RunResult still = RunQuillon({"chart", folder / "still.exr", "--size", "16x16"});
  ASSERT_EQ(still.exitCode, 0);
  WriteFile(folder / "taken.mp4", "x");
  struct Case {
    std::vector<std::string> options;
    int exitCode;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"--codec", "hevc", folder / "still.exr", folder / "a.png"}, 2, "--codec is for clips"},
      {{"--peak", "scenes", folder / "still.exr", folder / "a.png"}, 2, "is for clips"},
      {{"--fps", "25", clip, folder / "a.mp4"}, 2, "--fps is for image sequences"},
      {{"--codec", "hevc", clip, folder / "f%d.png"}, 2, "--codec has no effect"},
      {{"--quality", "3", "--codec", "ffv1", clip, folder / "a.mkv"}, 2, "have no effect"},
      {{"--codec", "prores", clip, folder / "a.mp4"}, 4, "do not hold prores"},
      {{"--depth", "12", clip, folder / "a.mp4"}, 4, "libx264 does not take 420 at 12 bits"},
      {{clip, folder / "a.png"}, 4, "a sequence such as frame.%05d.png"},
      {{"--preset", "warp", clip, folder / "a.mp4"}, 4, "check --preset"},
      {{clip, folder / "taken.mp4"}, 5, "it exists already"}};
  for (const Case& refused : cases) {
    const RunResult run = Map(refused.options);
    EXPECT_EQ(run.exitCode, refused.exitCode) << run.err;
    EXPECT_THAT(run.err, HasSubstr(refused.message));
  }
  EXPECT_THAT(folder.Names(), testing::ElementsAre("clip.mp4", "still.exr", "taken.mp4"));
}

}  // namespace
