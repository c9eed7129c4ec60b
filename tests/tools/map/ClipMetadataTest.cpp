#include <fstream>
#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include "refhost/orvmediatypes/H273.h"
#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/video/ClipReader.h"

using namespace Quillon::Cli;

namespace {

using testing::HasSubstr;

ClipTags TagsOfClip(const std::filesystem::path& path) { return ClipReader(path).Info().tags; }

TEST(ClipMetadata, OfTheChartIsThatOfHdr10) {
  const ScratchFolder folder;
  for (const std::string name : {"clip.mp4", "clip.mkv"}) {
    const ClipTags tags = TagsOfClip(MakeChartClip(folder, name, {"--frames", "2"}));
    EXPECT_EQ(tags.colors.primaries, RefHost::kPrimariesBT2020);
    EXPECT_EQ(tags.colors.transfer, RefHost::kTransferPQ);
    EXPECT_EQ(tags.colors.matrix, 9);
    EXPECT_FALSE(tags.colors.fullRange);
    EXPECT_EQ(tags.colors.chromaLocation, 2);
    EXPECT_FLOAT_EQ(tags.colors.masteringMaxLuminance, 4000.0F);
    EXPECT_NEAR(tags.colors.masteringChromaticities.green.y, 0.797, 1e-4);
    EXPECT_EQ(tags.light.maxCLL, 4000.0F);
    EXPECT_GT(tags.light.maxFALL, 0.0F);
  }
}

TEST(ClipMetadata, IsDroppedWhereTheResultIsSdr) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "2"});
  for (const std::string name : {"sdr.mp4", "sdr.mkv", "sdr.mov"}) {
    ASSERT_EQ(RunQuillon({"map", clip, folder / name}).exitCode, 0);
    const ClipTags tags = TagsOfClip(folder / name);
    EXPECT_EQ(tags.colors.primaries, 1);
    EXPECT_EQ(tags.colors.transfer, 1);
    EXPECT_EQ(tags.colors.matrix, 1);
    EXPECT_FALSE(tags.colors.fullRange);
    EXPECT_EQ(tags.colors.masteringMaxLuminance, 0.0F) << name;
    EXPECT_EQ(tags.light, ContentLight()) << name;
  }
}

TEST(ClipMetadata, TellsTheLowerPeakWhereTheResultIsHdr) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "2"});
  for (const std::string codec : {"hevc", "av1", "h264"}) {
    const auto mapped = folder / (codec + ".mp4");
    const RunResult run = RunQuillon({"map", "--to", "bt2100-pq", "--target-peak", "600", "--codec",
                                      codec, "--depth", "10", clip, mapped});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const ClipTags tags = TagsOfClip(mapped);
    EXPECT_EQ(tags.colors.transfer, RefHost::kTransferPQ);
    EXPECT_NEAR(tags.colors.masteringMaxLuminance, 600.0F, 0.1F) << codec;
    EXPECT_EQ(tags.light.maxCLL, 600.0F) << codec;
  }
}

TEST(ClipMetadata, OfHlgHasNoLightLevels) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "2"});
  const auto mapped = folder / "hlg.mp4";
  const RunResult run = RunQuillon({"map", "--to", "bt2100-hlg", clip, mapped});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const ClipTags tags = TagsOfClip(mapped);
  EXPECT_EQ(tags.colors.transfer, RefHost::kTransferHLG);
  EXPECT_EQ(tags.colors.masteringMaxLuminance, 0.0F);
  EXPECT_EQ(tags.light, ContentLight());
}

TEST(ClipMetadata, OfMisorderedPrimariesIsPutRight) {
  const ScratchFolder folder;
  Encoding encoding = GreyEncoding();
  encoding.tags.colors.masteringMaxLuminance = 1000.0F;
  // Green, blue, red, as many files list them.
  encoding.tags.colors.masteringChromaticities = {
      {0.265, 0.690}, {0.150, 0.060}, {0.680, 0.320}, {0.3127, 0.3290}};
  WriteGreyClip(folder / "clip.mkv", encoding, 2, 400);
  const auto read = TagsOfClip(folder / "clip.mkv").colors.masteringChromaticities;
  EXPECT_NEAR(read.red.x, 0.680, 1e-4);
  EXPECT_NEAR(read.green.y, 0.690, 1e-4);
  EXPECT_NEAR(read.blue.y, 0.060, 1e-4);
}

TEST(ClipMetadata, GivesThePeakInTheStatedOrder) {
  const ScratchFolder folder;
  Encoding encoding = GreyEncoding();
  WriteGreyClip(folder / "untold.mkv", encoding, 2, 400);
  encoding.tags.colors.masteringMaxLuminance = 1200.0F;
  WriteGreyClip(folder / "display.mkv", encoding, 2, 400);
  encoding.tags.light = {700.0F, 100.0F};
  WriteGreyClip(folder / "content.mkv", encoding, 2, 400);
  encoding.tags = {};
  encoding.tags.colors.primaries = 9;
  encoding.tags.colors.transfer = RefHost::kTransferHLG;
  encoding.tags.colors.matrix = 9;
  WriteGreyClip(folder / "hlg.mkv", encoding, 2, 400);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"untold.mkv", "10000 nits = 49.2611 in linear light (nominal peak of the transfer)"},
      {"display.mkv", "1200 nits = 5.91133 in linear light (mastering display of the file)"},
      {"content.mkv", "700 nits = 3.44828 in linear light (MaxCLL of the file)"},
      {"hlg.mkv", "1000 nits = 4.92611 in linear light (nominal peak of the transfer)"}};
  for (const auto& [name, peak] : cases) {
    const RunResult run =
        RunQuillon({"map", "--dry-run", "--peak", "metadata", folder / name, folder / "out.mp4"});
    EXPECT_THAT(run.out, HasSubstr("source peak       " + peak)) << run.err;
  }
}

TEST(ClipMetadata, ThatIsMissingIsAskedFor) {
  const ScratchFolder folder;
  Encoding encoding = GreyEncoding();
  encoding.tags = {};
  encoding.tags.colors.primaries = 2;
  encoding.tags.colors.transfer = 2;
  encoding.tags.colors.matrix = 2;
  WriteGreyClip(folder / "clip.mkv", encoding, 2, 400);
  RunResult run = RunQuillon({"map", folder / "clip.mkv", folder / "out.mp4"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.err, HasSubstr("clip.mkv does not say which colour space it is in"));
  EXPECT_THAT(run.err, HasSubstr("--from NAME"));
  run = RunQuillon({"map", "--from", "bt2100-pq", folder / "clip.mkv", folder / "out.mp4"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST(ClipMetadata, KeepsTheRotation) {
  const std::filesystem::path clip =
      std::filesystem::path(QUILLON_MEDIA_DIR) / "video/hlg-phone-short.mov";
  if (!std::filesystem::exists(clip)) GTEST_SKIP() << "no media";
  const ScratchFolder folder;
  for (const std::string name : {"out.mp4", "out.mov"}) {
    const RunResult run = RunQuillon({"map", clip, folder / name});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("stream 2 of 5 (data, none) is left out"));
    EXPECT_THAT(run.err, HasSubstr("the Dolby Vision metadata is neither applied nor passed on"));
    EXPECT_EQ(ClipReader(folder / name).Info().rotation, ClipReader(clip).Info().rotation);
    EXPECT_EQ(ClipReader(folder / name).Info().rotation, 90);
  }
}

TEST(ClipLevels, AreMeasuredOnceAndKeptBesideTheClip) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "4"});
  const std::vector<std::string> words = {"map",        "--overwrite", "--peak", "measure",
                                          "--progress", "json",        clip,     folder / "a.mp4"};
  EXPECT_THAT(RunQuillon(words).err, HasSubstr("\"work\":\"measure\""));
  EXPECT_THAT(RunQuillon(words).err, testing::Not(HasSubstr("\"work\":\"measure\"")));

  const auto kept = nlohmann::json::parse(std::ifstream(folder / "clip.mp4.levels.json"));
  EXPECT_EQ(kept.at("frames").size(), 4U);
  EXPECT_EQ(kept.at("white_nits"), 203);

  // A newer file of that name is measured again.
  MakeChartClip(folder, "clip.mp4", {"--frames", "3", "--overwrite"});
  EXPECT_THAT(RunQuillon(words).err, HasSubstr("\"work\":\"measure\""));
}

TEST(ClipLevels, GiveEachSceneItsOwnPeak) {
  const ScratchFolder folder;
  const auto clip = MakeChartClip(folder, "clip.mp4", {"--frames", "40"});
  const RunResult run =
      RunQuillon({"map", "--dry-run", "--peak", "scenes", clip, folder / "out.mp4"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("(measured, scene by scene)"));
  const auto peakOf = [&run](const std::string& frames) {
    const std::size_t at = run.out.find("frames " + frames + ", peak ");
    return at == std::string::npos ? 0.0 : std::stod(run.out.substr(at + frames.size() + 14));
  };
  // Lossy coding lifts peaks at sharp edges.
  EXPECT_THAT(peakOf("0-19"), testing::AllOf(testing::Gt(3900.0), testing::Lt(6000.0)));
  EXPECT_THAT(peakOf("20-39"), testing::AllOf(testing::Gt(195.0), testing::Lt(350.0)));
}

}  // namespace
