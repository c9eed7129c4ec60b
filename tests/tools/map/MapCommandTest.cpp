#include <cmath>
#include <cstdint>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kestrel/FrameInterfaces.h"
#include "tests/tools/RunQuillon.h"
#include "tools/quillon/io/Still.h"

using namespace Quillon::Cli;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A folder with a small chart in it.
class MapCommand : public ::testing::Test {
 protected:
  std::string Chart(const std::string& name) const {
    const RunResult run = RunQuillon({"chart", "--size", "96x54", folder_ / name});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return folder_ / name;
  }

  ScratchFolder folder_;
};

/// Eight-bit red, green and blue of a pixel of a PNG.
std::array<int, 3> PixelAt(const std::string& path, int x, int y) {
  const Still still = ReadStill(path);
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(still.frame);
  const auto* pixel = static_cast<const std::uint8_t*>(memory->GetData()) +
                      std::ptrdiff_t{y} * memory->GetRowBytes() + std::ptrdiff_t{x} * 4;
  return {pixel[2], pixel[1], pixel[0]};
}

TEST_F(MapCommand, BlamesTheFileForColoursThatHaveNoConversion) {
  ASSERT_EQ(RunQuillon({"chart", "--size", "32x32", folder_ / "odd.png"}).exitCode, 0);
  const RunResult run =
      RunQuillon({"map", "--from-cicp", "9/200/9", folder_ / "odd.png", folder_ / "o.png"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, HasSubstr("odd.png: there is no conversion from CICP 9/200/9; tell with"));
  EXPECT_THAT(run.err, HasSubstr("--from NAME"));
}

TEST_F(MapCommand, MapsALinearPictureToATaggedSdrPng) {
  const RunResult run = RunQuillon({"map", Chart("c.exr"), folder_ / "c.png"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  const auto description = ReadStill(folder_ / "c.png").frame->GetColorSpace().Description();
  EXPECT_EQ(description.primaries, 1);
  EXPECT_EQ(description.transfer, 13);
  EXPECT_EQ(description.masteringMaxLuminance, 0.0F);
  EXPECT_EQ(ReadStill(folder_ / "c.png").light, ContentLight{});
}

TEST_F(MapCommand, LeavesMidGreyAloneAndBringsThePeakToWhite) {
  ASSERT_EQ(RunQuillon({"map", Chart("c.exr"), folder_ / "c.png"}).exitCode, 0);
  // The flat patches: 0, 1, 10, 26, 100, 203, 400, 1000 and 4000 nits.
  const auto patch = [&](int index) {
    return PixelAt(folder_ / "c.png", static_cast<int>(96 * (0.02 + 0.96 * (index + 0.5) / 9)), 13);
  };
  EXPECT_EQ(patch(0), (std::array<int, 3>{0, 0, 0}));
  const double linear = 26.0 / 203.0;
  const int midGrey =
      static_cast<int>(std::lround(255.0 * (1.055 * std::pow(linear, 1.0 / 2.4) - 0.055)));
  EXPECT_EQ(patch(3), (std::array<int, 3>{midGrey, midGrey, midGrey}));
  EXPECT_EQ(patch(8), (std::array<int, 3>{255, 255, 255}));
  for (int index = 1; index < 9; ++index) EXPECT_GT(patch(index)[1], patch(index - 1)[1]);
}

TEST_F(MapCommand, GivesTheSamePictureFromEveryContainer) {
  const std::string options = "--peak=4000";
  ASSERT_EQ(RunQuillon({"map", options, Chart("c.exr"), folder_ / "exr.png"}).exitCode, 0);
  ASSERT_EQ(RunQuillon({"map", options, Chart("c.png"), folder_ / "png.png"}).exitCode, 0);
  for (int y = 0; y < 54; y += 3) {
    for (int x = 0; x < 96; x += 3) {
      const auto fromExr = PixelAt(folder_ / "exr.png", x, y);
      const auto fromPng = PixelAt(folder_ / "png.png", x, y);
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(fromExr[c], fromPng[c], 1) << x << ',' << y;
    }
  }
}

TEST_F(MapCommand, GivesTheSameBytesOnOneThreadAndOnTwo) {
  const std::string chart = Chart("c.exr");
  ASSERT_EQ(RunQuillon({"map", "--threads", "1", chart, folder_ / "1.png"}).exitCode, 0);
  ASSERT_EQ(RunQuillon({"map", "--threads", "2", chart, folder_ / "2.png"}).exitCode, 0);
  EXPECT_EQ(ReadFile(folder_ / "1.png"), ReadFile(folder_ / "2.png"));
}

TEST_F(MapCommand, TakesThePeakFromMaxCLLAndDropsTheMetadataOnTheWayToSdr) {
  const RunResult run = RunQuillon({"map", "--explain", Chart("c.png"), folder_ / "sdr.png"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("4000 nits"));
  EXPECT_THAT(run.out, HasSubstr("MaxCLL of the file"));
  EXPECT_THAT(ReadFile(folder_ / "c.png"), HasSubstr("cLLI"));
  EXPECT_THAT(ReadFile(folder_ / "sdr.png"), Not(HasSubstr("cLLI")));
  EXPECT_THAT(ReadFile(folder_ / "sdr.png"), Not(HasSubstr("mDCV")));
}

TEST_F(MapCommand, WritesTheNewLightLevelIntoAPQResult) {
  ASSERT_EQ(RunQuillon({"map", "--to", "bt2100-pq", "--target-peak", "600", Chart("c.png"),
                        folder_ / "600.png"})
                .exitCode,
            0);
  const Still still = ReadStill(folder_ / "600.png");
  EXPECT_EQ(still.frame->GetColorSpace().Description().transfer, 16);
  EXPECT_NEAR(still.light.maxCLL, 600.0, 1.0);
}

TEST_F(MapCommand, ExplainsEverySettingItResolved) {
  const RunResult run = RunQuillon({"map", "--explain", Chart("c.exr"), folder_ / "c.png"});
  for (const char* text :
       {"linear light (CICP 9/8/0)", "sRGB (CICP 1/13/1)", "white             203 nits",
        "(measured)", "203 nits = 1 in linear light", "(chosen automatically)",
        "of the destination peak", "parameter 0", "scaled source peak = 19.7", "parameter 1",
        "knee = ", "parameter 2", "destination peak = 1"}) {
    EXPECT_THAT(run.out, HasSubstr(text));
  }
}

TEST_F(MapCommand, MapsByEveryAlgorithmFromLinearLightAndFromPQ) {
  for (const std::string& chart : {Chart("c.exr"), Chart("c.png")}) {
    for (const char* algorithm : {"auto", "bt2390-maxrgb", "bt2390-rgb", "bt2446a", "hue", "car"}) {
      const std::string out = folder_ / (std::string(algorithm) + ".png");
      const RunResult run =
          RunQuillon({"map", "--overwrite", "--algorithm", algorithm, chart, out});
      ASSERT_EQ(run.exitCode, 0) << algorithm << ": " << run.err;
      // The flat patches of 1 to 4000 nits rise, and 203 nits are neither black nor white.
      int last = -1;
      for (int patch = 1; patch < 9; ++patch) {
        const int level =
            PixelAt(out, static_cast<int>(96 * (0.02 + 0.96 * (patch + 0.5) / 9)), 13)[1];
        EXPECT_GE(level, last) << algorithm << ", patch " << patch;
        last = level;
        if (patch == 5) {
          EXPECT_GT(level, 100) << algorithm;
          EXPECT_LT(level, 255) << algorithm;
        }
      }
    }
  }
}

TEST_F(MapCommand, AcceptsTheNamesThatFFmpegUses) {
  const std::string chart = Chart("c.png");
  for (const char* name : {"iec61966-2-1", "bt709", "bt2020", "smpte2084", "arib-std-b67"}) {
    const RunResult run =
        RunQuillon({"map", "--overwrite", "--to", name, chart, folder_ / "out.png"});
    EXPECT_EQ(run.exitCode, 0) << name << ": " << run.err;
  }
}

TEST_F(MapCommand, IsSilentWhenAskedToBe) {
  const RunResult run = RunQuillon({"map", "--quiet", Chart("c.exr"), folder_ / "c.png"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out + run.err, IsEmpty());
}

TEST_F(MapCommand, RefusesOptionsThatWouldHaveNoEffect) {
  const std::string chart = Chart("c.exr");
  struct Refusal {
    std::vector<std::string> arguments;
    std::string named;
  };
  const std::vector<Refusal> refusals = {
      {{"--target-peak", "500"}, "--target-peak"},
      {{"--to", "bt2020", "--target-peak", "500"}, "--target-peak"},
      {{"--knee", "0.3"}, "--knee"},
      {{"--algorithm", "bt2446a", "--knee", "0.3"}, "--knee"},
      {{"--algorithm", "none", "--gain", "2"}, "--gain"},
      {{"--algorithm", "none", "--preserve", "1"}, "--preserve"},
      {{"--algorithm", "none", "--peak", "1000"}, "--peak"},
      {{"--to", "srgb", "--to-cicp", "1/1/1"}, "--to-cicp"},
      {{"--from", "srgb", "--from-cicp", "1/1/1"}, "--from-cicp"},
  };
  for (const Refusal& refusal : refusals) {
    std::vector<std::string> arguments = {"map", chart, folder_ / "out.png"};
    arguments.insert(arguments.end(), refusal.arguments.begin(), refusal.arguments.end());
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 2) << refusal.named;
    EXPECT_THAT(run.err, HasSubstr(refusal.named));
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("c.exr"));
}

TEST_F(MapCommand, SaysWhyATargetPeakIsNotForSdr) {
  const RunResult run =
      RunQuillon({"map", "--target-peak", "500", "--white", "100", "in.exr", "out.png"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("an SDR destination's 1.0 is the white of --white (100 nits)"));
}

TEST_F(MapCommand, RefusesValuesOutOfRange) {
  const std::vector<std::pair<std::string, std::string>> refused = {{"--peak", "0"},
                                                                    {"--peak", "-5"},
                                                                    {"--peak", "nan"},
                                                                    {"--peak", "inf"},
                                                                    {"--peak", "1000 nits"},
                                                                    {"--peak", "bright"},
                                                                    {"--white", "0"},
                                                                    {"--white", "x"},
                                                                    {"--knee", "1.5"},
                                                                    {"--gain", "0"},
                                                                    {"--preserve", "2"},
                                                                    {"--threads", "0"},
                                                                    {"--to", "rec9000"},
                                                                    {"--to-cicp", "9/16"},
                                                                    {"--to-cicp", "9/16/9/1"},
                                                                    {"--to-cicp", "256/1/1"},
                                                                    {"--algorithm", "best"},
                                                                    {"--gamut", "clip"},
                                                                    {"--target-peak", "20000"},
                                                                    {"--nonsense", "1"}};
  for (const auto& [option, value] : refused) {
    const RunResult run = RunQuillon({"map", option, value, "in.exr", "out.png"});
    EXPECT_EQ(run.exitCode, 2) << option << ' ' << value;
    EXPECT_THAT(run.err, Not(IsEmpty()));
  }
}

TEST_F(MapCommand, TellsThatAnInputIsMissing) {
  const RunResult run = RunQuillon({"map", folder_ / "absent.exr", folder_ / "out.png"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.err, HasSubstr("absent.exr"));
}

TEST_F(MapCommand, LeavesNothingBehindWhenTheInputIsTruncated) {
  const std::string chart = Chart("c.exr");
  const std::string bytes = ReadFile(chart);
  WriteFile(folder_ / "c.exr", bytes.substr(0, bytes.size() / 2));
  const RunResult run = RunQuillon({"map", chart, folder_ / "out.png"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.err, HasSubstr("c.exr"));
  EXPECT_THAT(folder_.Names(), ElementsAre("c.exr"));
}

TEST_F(MapCommand, RefusesAnOutputThatExists) {
  const std::string chart = Chart("c.exr");
  WriteFile(folder_ / "out.png", "mine");
  const RunResult run = RunQuillon({"map", chart, folder_ / "out.png"});
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_THAT(run.err, HasSubstr("--overwrite"));
  EXPECT_EQ(ReadFile(folder_ / "out.png"), "mine");
  EXPECT_EQ(RunQuillon({"map", "--overwrite", chart, folder_ / "out.png"}).exitCode, 0);
}

TEST_F(MapCommand, TellsThatAnOutputFolderIsMissing) {
  const RunResult run = RunQuillon({"map", Chart("c.exr"), folder_ / "absent/out.png"});
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_THAT(run.err, HasSubstr("absent"));
}

TEST_F(MapCommand, TellsWhichOutputFormatsThereAre) {
  const RunResult run = RunQuillon({"map", Chart("c.exr"), folder_ / "out.gif"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, HasSubstr(".png"));
}

TEST_F(MapCommand, TellsThatAColourSpaceIsNotKnown) {
  const std::string chart = Chart("c.png");
  const std::vector<std::pair<std::string, std::string>> unknown = {
      {"--to-cicp", "9/99/9"}, {"--to-cicp", "2/2/2"}, {"--from-cicp", "99/16/9"}};
  for (const auto& [option, points] : unknown) {
    const RunResult run = RunQuillon({"map", option, points, chart, folder_ / "out.png"});
    EXPECT_EQ(run.exitCode, 4) << points;
    EXPECT_THAT(run.err, HasSubstr(points));
  }
  EXPECT_EQ(RunQuillon({"map", "--from-cicp", "9/2/9", chart, folder_ / "out.png"}).exitCode, 3);
  EXPECT_THAT(folder_.Names(), ElementsAre("c.png"));
}

TEST_F(MapCommand, TellsWhatTheEngineRefused) {
  // A picture mapped to its own peak: the curve has no range to work in.
  const RunResult run =
      RunQuillon({"map", "--algorithm", "bt2390-rgb", "--gain", "2", "--peak", "10000", "--to",
                  "bt2100-pq", Chart("c.png"), folder_ / "out.png"});
  EXPECT_EQ(run.exitCode, 6);
  EXPECT_THAT(run.err, HasSubstr("0xA00F000"));
  EXPECT_THAT(run.err, HasSubstr("ApplyGamutMappingSW : GenerateToneMappedFrame : Failed"));
  EXPECT_THAT(folder_.Names(), ElementsAre("c.png"));
}

TEST_F(MapCommand, NotesThatDialsHaveNoEffectOnAnSdrPicture) {
  ASSERT_EQ(RunQuillon({"map", Chart("c.exr"), folder_ / "sdr.png"}).exitCode, 0);
  const RunResult run =
      RunQuillon({"map", "--preserve", "1", folder_ / "sdr.png", folder_ / "again.png"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("--preserve"));
  EXPECT_THAT(run.err, HasSubstr("nothing is tone mapped"));
}

TEST_F(MapCommand, NotesThatTheFileMeansAnotherWhite) {
  const std::string chart = Chart("c.exr");  // says 203 nits
  EXPECT_THAT(RunQuillon({"map", chart, folder_ / "203.png"}).err, IsEmpty());
  const RunResult run = RunQuillon({"map", "--white", "100", chart, folder_ / "100.png"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("its 1.0 is 203 nits"));
}

TEST_F(MapCommand, KeepsAnSdrPictureAsItIs) {
  ASSERT_EQ(RunQuillon({"map", Chart("c.exr"), folder_ / "sdr.png"}).exitCode, 0);
  ASSERT_EQ(RunQuillon({"map", folder_ / "sdr.png", folder_ / "again.png"}).exitCode, 0);
  for (int y = 0; y < 54; ++y) {
    for (int x = 0; x < 96; ++x) {
      ASSERT_EQ(PixelAt(folder_ / "sdr.png", x, y), PixelAt(folder_ / "again.png", x, y));
    }
  }
}

TEST(CommandLine, ExplainsItself) {
  const RunResult run = RunQuillon({"--help"});
  EXPECT_EQ(run.exitCode, 0);
  for (const char* text : {"map", "chart", "Exit codes"}) EXPECT_THAT(run.out, HasSubstr(text));
  const RunResult map = RunQuillon({"map", "--help"});
  EXPECT_EQ(map.exitCode, 0);
  for (const char* text : {"--to", "--peak", "nits", "--explain", "bt2100-pq", "desaturate"}) {
    EXPECT_THAT(map.out, HasSubstr(text));
  }
}

TEST(CommandLine, WantsACommand) {
  EXPECT_EQ(RunQuillon({}).exitCode, 2);
  EXPECT_EQ(RunQuillon({"paint"}).exitCode, 2);
}

}  // namespace
