#include <algorithm>
#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include "refhost/orvmediatypes/H273.h"
#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/inspect/Inspection.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/video/AvPictures.h"
#include "tools/quillon/video/ClipReader.h"
#include "tools/quillon/video/ClipWriter.h"

using namespace Quillon::Cli;

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

json Inspect(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"inspect", "--json", "-"});
  const RunResult run = RunQuillon(arguments);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  return json::parse(run.out);
}

TEST(Inspect, TellsTagsAndMetadata) {
  const ScratchFolder folder;
  const json found = Inspect({MakeChartClip(folder, "clip.mp4", {"--frames", "24"})});
  EXPECT_EQ(found.at("codec"), "hevc");
  EXPECT_EQ(found.at("pixel_format"), "yuv420p10le");
  EXPECT_EQ(found.at("width"), 192);
  EXPECT_EQ(found.at("frames"), 24);
  EXPECT_DOUBLE_EQ(found.at("seconds"), 1.0);
  EXPECT_EQ(found.at("tags").at("color_space").at("transfer"), 16);
  EXPECT_EQ(found.at("tags").at("mastering_display").at("max_nits"), 4000.0);
  EXPECT_EQ(found.at("tags").at("max_cll_nits"), 4000.0);
  EXPECT_EQ(found.at("peak").at("origin"), "MaxCLL of the file");
  EXPECT_FALSE(found.contains("measured"));
  EXPECT_THAT(found.at("warnings"), IsEmpty());
}

TEST(Inspect, MeasuresGreyOfAKnownCode) {
  const ScratchFolder folder;
  // ST 2084 in narrow range: (573 - 64) / 876 is 203.7 nits.
  WriteGreyClip(folder / "clip.mkv", GreyEncoding(), 2, 573);
  const json found = Inspect({"--measure", folder / "clip.mkv"});
  const json& first = found.at("measured").at("frames").at(0);
  EXPECT_NEAR(first.at("peak_nits"), 203.7, 0.1);
  EXPECT_NEAR(first.at("average_nits"), 203.7, 0.1);
  for (const std::string name : {"50", "90", "99", "99_99"}) {
    EXPECT_NEAR(first.at("percentile_" + name + "_nits"), 203.7, 203.7 * 0.016);
  }
  EXPECT_EQ(found.at("measured").at("frames").size(), 2U);
  // A code further is 1.2 % brighter: a 58th of a stop, and a bin of 64 to the octave at most.
  EXPECT_NEAR(found.at("measured").at("frames").at(1).at("change_stops"), 0.017, 0.016);
}

TEST(Inspect, ReadsStillsAndSequencesToo) {
  const ScratchFolder folder;
  ASSERT_EQ(RunQuillon({"chart", "--size", "64x36", folder / "still.exr"}).exitCode, 0);
  const json still = Inspect({"--measure", folder / "still.exr"});
  EXPECT_EQ(still.at("codec"), "exr");
  EXPECT_NEAR(still.at("measured").at("max_cll_nits"), 4000.0, 2.0);
  EXPECT_EQ(still.at("peak").at("origin"), "measured");

  ASSERT_EQ(RunQuillon({"chart", "--size", "64x36", folder / "f.0.png"}).exitCode, 0);
  ASSERT_EQ(RunQuillon({"chart", "--size", "64x36", folder / "f.1.png"}).exitCode, 0);
  EXPECT_EQ(Inspect({folder / "f.%d.png"}).at("frames"), 2);
}

TEST(Inspect, DrawsLevelsAndContactSheet) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "30"});
  const RunResult run = RunQuillon({"inspect", "--quiet", "--plot", folder / "levels.svg",
                                    "--sheet", folder / "sheet.png", clip});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(ReadFile(folder / "levels.svg"), HasSubstr("peak to map from, 4000 nits"));
  const auto bounds = ReadStill(folder / "sheet.png").frame->GetBounds();
  EXPECT_EQ(bounds.width, 16 + 4 * (320 + 16));
  EXPECT_EQ(bounds.height, 16 + 3 * (108 + 20 + 16));

  const RunResult jpeg = RunQuillon({"inspect", "--sheet", folder / "sheet.jpg", clip});
  EXPECT_EQ(jpeg.exitCode, 4);
  EXPECT_THAT(jpeg.err, HasSubstr("name it .png"));
}

/// Levels of frames that all have this peak and half of it on average.
ClipLevels LevelsOf(double peak, std::size_t frames = 1) {
  FrameLevels levels;
  levels.peak = peak;
  levels.average = peak / 2.0;
  levels.percentiles = {peak, peak, peak, peak};
  levels.steadyPeak = peak;
  return {"", 203, 99.99, std::vector<FrameLevels>(frames, levels)};
}

ClipTags PQTags(float maxCll, float maxFall) {
  ClipTags tags;
  tags.colors.primaries = RefHost::kPrimariesBT2020;
  tags.colors.transfer = RefHost::kTransferPQ;
  tags.light = {maxCll, maxFall};
  return tags;
}

TEST(Inspect, WarnsWhereTagsAndContentDisagree) {
  EXPECT_THAT(FindDisagreements(PQTags(1000, 400), LevelsOf(980)), IsEmpty());
  EXPECT_THAT(FindDisagreements(PQTags(4000, 0), LevelsOf(1000)),
              ElementsAre("MaxCLL is 4000 nits, but the brightest pixel has 1000 nits"));
  EXPECT_THAT(FindDisagreements(PQTags(500, 0), LevelsOf(1000)),
              ElementsAre("MaxCLL is 500 nits, but the content reaches 1000 nits"));
  EXPECT_THAT(FindDisagreements(PQTags(1000, 900), LevelsOf(1000)),
              ElementsAre("MaxFALL is 900 nits, but the brightest picture has 500 nits on "
                          "average"));
  EXPECT_THAT(FindDisagreements(PQTags(0, 0), LevelsOf(99)),
              ElementsAre(HasSubstr("it is tagged PQ, but never passes 100 nits")));
  EXPECT_THAT(
      FindDisagreements(PQTags(100, 200), std::nullopt),
      ElementsAre("a MaxCLL of 100 nits (less than MaxFALL, 200) cannot be and is ignored"));
  ClipTags dark = PQTags(0, 0);
  dark.colors.masteringMaxLuminance = 0.1F;
  EXPECT_THAT(
      FindDisagreements(dark, std::nullopt),
      ElementsAre("a mastering display of 0.1 nits (less than 50) cannot be and is ignored"));
  ClipTags sdr = PQTags(1000, 0);
  sdr.colors.transfer = RefHost::kTransferBT709;
  EXPECT_THAT(FindDisagreements(sdr, std::nullopt),
              ElementsAre(HasSubstr("the transfer is not an HDR one")));
  EXPECT_THAT(FindDisagreements({}, std::nullopt),
              ElementsAre("the transfer function is not told", "the primaries are not told"));
}

TEST(ClipScenes, AreCutWhereTheLightJumpsAndNeverShort) {
  std::vector<FrameLevels> levels = LevelsOf(1000, 40).frames;
  for (std::size_t i = 20; i < 40; ++i) levels[i] = LevelsOf(50).frames[0];
  levels[20].change = 4.3;
  const auto scenes = FindScenes(levels, 12);
  ASSERT_EQ(scenes.size(), 2U);
  EXPECT_EQ(scenes[0].peak, 1000.0);
  EXPECT_EQ(scenes[1].first, 20);
  EXPECT_EQ(scenes[1].peak, 50.0);

  // A flash is no scene of its own, and its light stays in the scene's peak.
  levels = LevelsOf(100, 40).frames;
  levels[30] = LevelsOf(900).frames[0];
  levels[30].change = levels[31].change = 3.2;
  const auto flash = FindScenes(levels, 12);
  for (const ClipScene& scene : flash) EXPECT_GE(scene.count, 10);
  EXPECT_EQ(flash.back().peak, 900.0);
}

TEST(ClipScenes, HaveAPeakThatNoFrameExceedsAndCoverTheClip) {
  std::vector<FrameLevels> levels;
  std::uint32_t state = 1;
  for (int i = 0; i < 500; ++i) {
    state = state * 1664525U + 1013904223U;
    levels.push_back(LevelsOf(1.0 + state % 4000).frames[0]);
    levels.back().change = static_cast<double>(state >> 16 & 0xFFU) / 64.0;
  }
  std::int64_t next = 0;
  for (const ClipScene& scene : FindScenes(levels, 12)) {
    EXPECT_EQ(scene.first, next);
    EXPECT_GE(scene.count, 12);
    for (std::int64_t i = 0; i < scene.count; ++i) {
      EXPECT_LE(levels[static_cast<std::size_t>(next + i)].steadyPeak, scene.peak);
    }
    next += scene.count;
  }
  EXPECT_EQ(next, 500);
}

TEST(CompareClips, FindsTheFrameThatDiffersMost) {
  const ScratchFolder folder;
  WriteGreyClip(folder / "a.mkv", GreyEncoding(), 6, 500);
  {
    // The same, but for one frame.
    ClipWriter writer(folder / "b.mkv", GreyEncoding(), nullptr);
    AvFramePool pool(AV_PIX_FMT_YUV420P10LE, 64, 48);
    ClipReader reader(folder / "a.mkv");
    while (const auto frame = reader.Next()) {
      const AvFramePtr copy(av_frame_clone(frame->samples.get()));
      ASSERT_GE(av_frame_make_writable(copy.get()), 0);
      copy->pts = frame->number;
      if (frame->number == 4) {
        auto* row = reinterpret_cast<std::uint16_t*>(copy->data[0]);
        std::fill_n(row, 64, std::uint16_t{700});
      }
      writer.WriteFrame(*copy);
    }
    writer.Finish();
  }
  const RunResult run = RunQuillon({"compare", "--json", "-", folder / "a.mkv", folder / "b.mkv"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const json found = json::parse(run.out);
  EXPECT_EQ(found.at("frames_compared"), 6);
  EXPECT_EQ(found.at("delta_e_itp").at("worst_frame"), 4);
  EXPECT_EQ(found.at("frames").at(3).at("delta_e_itp").at("max"), 0.0);
  EXPECT_GT(found.at("frames").at(4).at("delta_e_itp").at("max"), 50.0);
  EXPECT_EQ(found.at("frames").at(4).at("delta_e_itp").at("max_at").at("y"), 0);
  EXPECT_GT(found.at("psnr_own_signal").at("db"), 20.0);
}

TEST(CompareClips, OfDifferentLengthsComparesWhatBothHave) {
  const ScratchFolder folder;
  WriteGreyClip(folder / "a.mkv", GreyEncoding(), 6, 500);
  WriteGreyClip(folder / "b.mkv", GreyEncoding(), 4, 500);
  const RunResult run = RunQuillon(
      {"compare", folder / "a.mkv", folder / "b.mkv", "--view", "delta-e", folder / "v.png"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("a.mkv goes on after the 4 frames of the other"));
  EXPECT_THAT(run.out, HasSubstr("PSNR, own signal        infinite"));
  EXPECT_GE(ReadStill(folder / "v.png").frame->GetBounds().width, 64);
}

}  // namespace
