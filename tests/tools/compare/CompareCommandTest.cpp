#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/RunQuillon.h"
#include "tests/tools/io/PngFile.h"
#include "tools/quillon/io/Still.h"

using namespace Quillon::Cli;

namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::uint8_t kSrgb = 13;
constexpr std::uint8_t kPQ = 16;

/// 8-bit pictures of 8x4 pixels, written by hand.
class CompareCommand : public ::testing::Test {
 protected:
  /// All of one grey, but for the pixel at 5, 2 that has another.
  std::string Picture(const std::string& name, std::uint8_t grey, std::uint8_t other,
                      const std::vector<PngChunk>& chunks) const {
    PngPicture picture;
    picture.width = 8;
    picture.height = 4;
    picture.chunks = chunks;
    picture.rows.assign(4, Bytes(std::size_t{3} * 8, grey));
    for (int c = 0; c < 3; ++c) picture.rows[2][3 * 5 + c] = other;
    WriteBytes(folder_ / name, picture.File());
    return folder_ / name;
  }

  std::string Tagged(const std::string& name, std::uint8_t transfer, std::uint8_t grey,
                     std::uint8_t other) const {
    const std::uint8_t primaries = transfer == kSrgb ? 1 : 9;
    return Picture(name, grey, other, {{"cICP", {primaries, transfer, 0, 1}}});
  }

  std::string Srgb(const std::string& name, std::uint8_t grey, std::uint8_t other) const {
    return Tagged(name, kSrgb, grey, other);
  }

  ScratchFolder folder_;
};

json FiguresOf(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"compare", "--json", "-"});
  const RunResult run = RunQuillon(arguments);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  return json::parse(run.out);
}

TEST_F(CompareCommand, PrintsTheFiguresOfBothPictures) {
  const RunResult run = RunQuillon({"compare", Srgb("a.png", 100, 100), Srgb("b.png", 100, 255)});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  for (const char* text :
       {"a.png, sRGB (CICP 1/13/0)", "32 of 32 (8x4), white 203 nits", "delta-E ITP",
        "median 0.0000", "at x 5, y 2", "PSNR, PQ of BT.2020", "PSNR, own signal", "A 0 (0.000 %)",
        "B 1 (3.125 %)", "out of bt2020", "not finite"}) {
    EXPECT_THAT(run.out, HasSubstr(text));
  }
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png", "b.png"));
}

TEST_F(CompareCommand, FindsNoDifferenceBetweenAPictureAndItself) {
  const std::string a = Srgb("a.png", 100, 255);
  EXPECT_THAT(RunQuillon({"compare", a, a}).out, HasSubstr("infinite: there is no difference"));
  const json figures = FiguresOf({a, a});
  EXPECT_EQ(figures["delta_e_itp"]["max"], 0.0);
  EXPECT_TRUE(figures["psnr_pq_bt2020"]["db"].is_null());
  EXPECT_TRUE(figures["psnr_own_signal"]["db"].is_null());
}

TEST_F(CompareCommand, GivesTheFiguresAsJson) {
  const json figures = FiguresOf({Srgb("a.png", 100, 100), Srgb("b.png", 100, 255)});
  EXPECT_EQ(figures["width"], 8);
  EXPECT_EQ(figures["compared_pixels"], 32);
  EXPECT_EQ(figures["delta_e_itp"]["max_at"], json::parse(R"({"x": 5, "y": 2})"));
  EXPECT_EQ(figures["b"]["clipped_pixels"], 1);
  EXPECT_EQ(figures["a"]["file"], (folder_ / "a.png").string());
  EXPECT_EQ(figures["a"]["color_space"]["transfer"], kSrgb);
  // The mean square of one pixel of 32 that differs by 155 of 255.
  EXPECT_NEAR(figures["psnr_own_signal"]["db"].get<double>(),
              -10.0 * std::log10(155.0 / 255.0 * 155.0 / 255.0 / 32.0), 1e-4);
}

TEST_F(CompareCommand, WritesTheJsonToAFileBesideTheTable) {
  const std::string a = Srgb("a.png", 100, 255);
  const RunResult run = RunQuillon({"compare", "--json", folder_ / "f.json", a, a});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("delta-E ITP"));
  EXPECT_EQ(json::parse(ReadFile(folder_ / "f.json"))["pixels"], 32);

  const RunResult again = RunQuillon({"compare", "--json", folder_ / "f.json", a, a});
  EXPECT_EQ(again.exitCode, 5);
  EXPECT_THAT(again.err, HasSubstr("--overwrite"));
  EXPECT_EQ(RunQuillon({"compare", "--overwrite", "--json", folder_ / "f.json", a, a}).exitCode, 0);
}

TEST_F(CompareCommand, TakesOneColourForTheSameInEveryContainer) {
  for (const char* name : {"c.exr", "c.png", "c.avif"}) {
    ASSERT_EQ(RunQuillon({"chart", "--size", "96x54", folder_ / name}).exitCode, 0);
  }
  // Half floats of the EXR and 16 bits of the PNG, then 10 bits of the AVIF.
  EXPECT_LT(FiguresOf({folder_ / "c.exr", folder_ / "c.png"})["delta_e_itp"]["max"], 0.5);
  EXPECT_LT(FiguresOf({folder_ / "c.avif", folder_ / "c.png"})["delta_e_itp"]["percentile_95"],
            2.0);
  // The EXR says what its 1.0 is, whatever the white.
  EXPECT_LT(
      FiguresOf({"--white", "100", folder_ / "c.exr", folder_ / "c.png"})["delta_e_itp"]["max"],
      0.5);
}

TEST_F(CompareCommand, ShowsHdrMappedToSrgbAndSaysSo) {
  const std::string output = folder_ / "view.png";
  const RunResult run =
      RunQuillon({"compare", Tagged("a.png", kPQ, 140, 200), Srgb("b.png", 100, 255), output});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("note: for the view, what is not SDR is mapped to sRGB"));
  const Still view = ReadStill(output);
  EXPECT_EQ(view.frame->GetBounds().width, 17);
  EXPECT_EQ(view.frame->GetBounds().height, 4);
  EXPECT_EQ(view.frame->GetColorSpace().Description().transfer, kSrgb);
}

TEST_F(CompareCommand, ShowsSdrAsItIsWithoutANote) {
  const RunResult run =
      RunQuillon({"compare", Srgb("a.png", 7, 200), Srgb("b.png", 100, 255), folder_ / "view.png"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(CompareCommand, WritesEveryView) {
  const std::string a = Tagged("a.png", kPQ, 140, 200);
  const std::string b = Tagged("b.png", kPQ, 140, 190);
  const std::vector<std::vector<std::string>> views = {{"--view", "side-by-side"},
                                                       {"--view", "split", "--split", "0.3"},
                                                       {"--view", "delta-e"},
                                                       {"--view", "clip", "--gamut", "bt709"}};
  for (const auto& view : views) {
    std::vector<std::string> arguments = {"compare", "--quiet", a, b, folder_ / (view[1] + ".png")};
    arguments.insert(arguments.end(), view.begin(), view.end());
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out + run.err, IsEmpty());
  }
  EXPECT_EQ(ReadStill(folder_ / "split.png").frame->GetBounds().width, 8);
  EXPECT_GT(ReadStill(folder_ / "delta-e.png").frame->GetBounds().height, 4);
  EXPECT_GT(ReadStill(folder_ / "clip.png").frame->GetBounds().height, 4);
}

TEST_F(CompareCommand, RefusesPicturesOfDifferentSizesAndSaysBoth) {
  ASSERT_EQ(RunQuillon({"chart", "--size", "96x54", folder_ / "c.png"}).exitCode, 0);
  const RunResult run =
      RunQuillon({"compare", folder_ / "c.png", Srgb("b.png", 1, 2), folder_ / "view.png"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, HasSubstr("A is 96x54 and B is 8x4"));
  EXPECT_THAT(folder_.Names(), ElementsAre("b.png", "c.png"));
}

TEST_F(CompareCommand, RefusesAnUntaggedPictureUntilItIsTagged) {
  const std::string tagged = Tagged("a.png", kPQ, 140, 200);
  const std::string untagged = Picture("b.png", 140, 200, {});
  const RunResult run = RunQuillon({"compare", tagged, untagged});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.err, HasSubstr("b.png does not say"));
  EXPECT_THAT(run.err, HasSubstr("--from-b NAME"));
  EXPECT_THAT(RunQuillon({"compare", untagged, tagged}).err, HasSubstr("--from-cicp-a P/T/M"));

  EXPECT_EQ(FiguresOf({tagged, untagged, "--from-b", "bt2100-pq"})["delta_e_itp"]["max"], 0.0);
  EXPECT_EQ(FiguresOf({tagged, untagged, "--from-cicp-b", "9/16/0"})["delta_e_itp"]["max"], 0.0);
  EXPECT_GT(FiguresOf({tagged, untagged, "--from-b", "srgb"})["delta_e_itp"]["max"], 10.0);
  EXPECT_EQ(FiguresOf({untagged, tagged, "--from-a", "bt2100-pq"})["delta_e_itp"]["max"], 0.0);
}

TEST_F(CompareCommand, RefusesOptionsThatWouldHaveNoEffectAndValuesOutOfRange) {
  const std::string a = Srgb("a.png", 1, 2);
  const std::vector<std::pair<std::vector<std::string>, std::string>> refusals = {
      {{"--view", "clip"}, "OUTPUT"},
      {{"--split", "0.5"}, "OUTPUT"},
      {{folder_ / "v.png", "--split", "0.5"}, "--view split"},
      {{folder_ / "v.png", "--view", "split", "--split", "1.5"}, "--split"},
      {{folder_ / "v.png", "--view", "split", "--split", "nan"}, "--split"},
      {{folder_ / "v.png", "--json", folder_ / "v.png"}, "cannot be one file"},
      {{folder_ / "v.png", "--view", "heat"}, "side-by-side|split|delta-e|clip"},
      {{"--gamut", "xyz"}, "bt709|p3-d65|bt2020"},
      {{"--white", "0"}, "--white"},
      {{"--from-a", "rec9000"}, "rec9000"},
      {{"--from-b", "srgb", "--from-cicp-b", "1/1/1"}, "--from-cicp-b"}};
  for (const auto& [options, named] : refusals) {
    std::vector<std::string> arguments = {"compare", a, a};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 2) << named;
    EXPECT_THAT(run.err, HasSubstr(named));
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CompareCommand, WritesViewsAsPngAndReplacesNoneUnasked) {
  const std::string a = Srgb("a.png", 1, 2);
  const RunResult exr = RunQuillon({"compare", a, a, folder_ / "view.exr"});
  EXPECT_EQ(exr.exitCode, 4);
  EXPECT_THAT(exr.err, HasSubstr(".png"));
  WriteFile(folder_ / "view.png", "mine");
  EXPECT_EQ(RunQuillon({"compare", a, a, folder_ / "view.png"}).exitCode, 5);
  EXPECT_EQ(ReadFile(folder_ / "view.png"), "mine");
  EXPECT_EQ(RunQuillon({"compare", "--overwrite", a, a, folder_ / "view.png"}).exitCode, 0);
}

TEST_F(CompareCommand, TellsThatAPictureIsMissing) {
  const RunResult run = RunQuillon({"compare", Srgb("a.png", 1, 2), folder_ / "absent.png"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.err, HasSubstr("absent.png"));
}

/// Real pictures, where the folder with them is there.
class CompareMedia : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::is_directory(QUILLON_MEDIA_DIR)) {
      GTEST_SKIP() << "no media in " QUILLON_MEDIA_DIR;
    }
  }

  static std::string File(const std::string& name) { return QUILLON_MEDIA_DIR "/" + name; }
};

TEST_F(CompareMedia, OnePictureInTwoContainersDiffersByLessThanCanBeSeen) {
  EXPECT_LT(FiguresOf({File("avif/seine_hdr_rec2020.avif"),
                       File("png/seine_pq_cicp.png")})["delta_e_itp"]["max"],
            0.1);
  EXPECT_LT(
      FiguresOf({File("exr/Chroma_Rec709.exr"), File("exr/Chroma_XYZ.exr")})["delta_e_itp"]["max"],
      1.0);
}

TEST_F(CompareMedia, ASignalAndTheLightItStandsForAreTheSame) {
  EXPECT_LT(FiguresOf({"--white", "100", "--from-a", "bt2100-pq", "--from-cicp-b", "9/8/0",
                       File("exr/PQ_BT2020_chart_signal.exr"),
                       File("exr/PQ_BT2020_chart_linear.exr")})["delta_e_itp"]["max"],
            0.01);
}

TEST_F(CompareMedia, ChromaSubsamplingIsSeen) {
  const json figures =
      FiguresOf({File("avif/seine_hdr_rec2020.avif"), File("avif/seine_pq_420_limited.avif")});
  EXPECT_GT(figures["delta_e_itp"]["percentile_99"], 5.0);
  EXPECT_LT(figures["delta_e_itp"]["mean"], 5.0);
}

TEST_F(CompareMedia, PixelsThatAreNotFiniteAreCountedAndLeftOut) {
  const json figures = FiguresOf({File("exr/BrightRings.exr"), File("exr/BrightRingsNanInf.exr")});
  EXPECT_EQ(figures["a"]["not_finite_pixels"], 0);
  EXPECT_EQ(figures["b"]["not_finite_pixels"], 12);
  EXPECT_EQ(figures["compared_pixels"], 800 * 800 - 12);
  EXPECT_EQ(figures["delta_e_itp"]["max"], 0.0);
}

}  // namespace
