#include <array>
#include <cmath>

#include <gmock/gmock.h>

#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/picture/DeltaEItp.h"
#include "tools/quillon/picture/Frames.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

using testing::HasSubstr;

const fs::path kFolder = fs::path(QUILLON_MEDIA_DIR) / "video";

constexpr std::array<const char*, 16> kClips = {
    "countdown_pq.mov",     "desk_pan_hdr10_4000.mp4", "desk_pan_hlg_1000.mp4",
    "hdr10-av1.mp4",        "hlg-phone-short.mov",     "hlg10-color-test.mp4",
    "output_hdr10.mp4",     "output_hdr10_p3.mp4",     "output_hdr10_rec709.mp4",
    "syn_hdr10_svtav1.mp4", "syn_hdr10_vp9.webm",      "syn_hdr10_x265.mp4",
    "syn_hlg_aom.mkv",      "syn_hlg_x265.mp4",        "syn_pq_gbrp16_ffv1.mkv",
    "syn_pq_prores.mov"};

class ClipMedia : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!fs::exists(Clip())) GTEST_SKIP() << "no media";
  }
  fs::path Clip() const { return kFolder / GetParam(); }
};

TEST_P(ClipMedia, MapsWithItsFramesTimesAndSound) {
  const ScratchFolder folder;
  for (const std::string extension : {".mp4", ".mkv"}) {
    const auto mapped = folder / ("mapped" + extension);
    const RunResult run = RunQuillon({"map", "--preset", "ultrafast", Clip(), mapped});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto frames = TimesOf(DecodeClip(Clip()));
    const auto mappedFrames = TimesOf(DecodeClip(mapped));
    const auto sound = PacketsOf(Clip(), AVMEDIA_TYPE_AUDIO);
    const auto mappedSound = PacketsOf(mapped, AVMEDIA_TYPE_AUDIO);
    ASSERT_EQ(mappedFrames.size(), frames.size());
    ASSERT_EQ(mappedSound.size(), sound.size());
    // Matroska counts in milliseconds, and has no times below 0: where sound begins there, all that
    // is in the clip begins later.
    const bool matroska = extension == ".mkv";
    const double tolerance = matroska ? 1.001e-3 : 1e-6;
    const double shift = mappedFrames[0] - frames[0];
    EXPECT_THAT(shift, testing::AllOf(testing::Ge(0.0), testing::Le(matroska ? 0.05 : 0.0)));
    for (std::size_t i = 0; i < frames.size(); ++i) {
      EXPECT_NEAR(mappedFrames[i], frames[i] + shift, tolerance);
    }
    for (std::size_t i = 0; i < sound.size(); ++i) {
      EXPECT_EQ(mappedSound[i].bytes, sound[i].bytes);
      EXPECT_NEAR(mappedSound[i].seconds, sound[i].seconds + shift, tolerance);
    }
    const ClipTags tags = ClipReader(mapped).Info().tags;
    EXPECT_EQ(tags.colors.primaries, 1);
    EXPECT_EQ(tags.colors.transfer, 1);
    EXPECT_EQ(tags.colors.matrix, 1);
    EXPECT_FALSE(tags.colors.fullRange);
    EXPECT_EQ(tags.colors.masteringMaxLuminance, 0.0F);
    EXPECT_EQ(tags.light, ContentLight());
  }
}

TEST_P(ClipMedia, MapsAnExcerptAlikeOnTheGPU) {
  if (RunQuillon({"devices"}).out.find("opencl:0") == std::string::npos) {
    GTEST_SKIP() << "no OpenCL device";
  }
  const ScratchFolder folder;
  const std::int64_t count = FrameIndex::Scan(Clip()).Count();
  const std::string frames = "0-" + std::to_string(std::min<std::int64_t>(count, 4) - 1);
  for (const std::string device : {"cpu", "opencl:0"}) {
    const RunResult run = RunQuillon({"map", "--codec", "ffv1", "--device", device, "--frames",
                                      frames, Clip(), folder / (device + ".mkv")});
    ASSERT_EQ(run.exitCode, 0) << run.err;
  }
  EXPECT_EQ(SamplesOf(DecodeClip(folder / "opencl:0.mkv")),
            SamplesOf(DecodeClip(folder / "cpu.mkv")));
}

std::string NameOf(const testing::TestParamInfo<const char*>& info) {
  std::string name = info.param;
  for (char& letter : name) {
    if (std::isalnum(static_cast<unsigned char>(letter)) == 0) letter = '_';
  }
  return name;
}
INSTANTIATE_TEST_SUITE_P(Video, ClipMedia, testing::ValuesIn(kClips), NameOf);

TEST(ClipMediaExplain, SaysWhatDiffersBetweenClipsThatDifferInMetadata) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"output_hdr10.mp4", "source peak       2000 nits = 9.85222 in linear light (MaxCLL"},
      {"output_hdr10_p3.mp4", "source peak       2000 nits = 9.85222 in linear light (MaxCLL"},
      {"output_hdr10_rec709.mp4", "source peak       100 nits = 0.492611 in linear light (MaxCLL"}};
  if (!fs::exists(kFolder)) GTEST_SKIP() << "no media";
  const ScratchFolder folder;
  for (const auto& [name, peak] : cases) {
    const RunResult run = RunQuillon({"map", "--dry-run", kFolder / name, folder / "out.mp4"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(peak)) << name;
    EXPECT_THAT(run.out, HasSubstr("input tags        BT.2100 PQ (CICP 9/16/9), narrow range, "
                                   "mastering display 0.0001 to "));
  }
}

/// Mean light of a square of 100 pixels, linear, 1.0 = white, red first.
std::array<double, 3> MeanLight(const FloatPixels& pixels, int centerX, int centerY) {
  std::array<double, 3> sum{};
  for (int y = centerY - 50; y < centerY + 50; ++y) {
    for (int x = centerX - 50; x < centerX + 50; ++x) {
      for (int c = 0; c < 3; ++c) sum[2 - c] += pixels.Row(y)[4 * x + c];
    }
  }
  for (double& light : sum) light /= 10000.0;
  return sum;
}

/// How far a patch lies from the grey of its intensity.
double DistanceFromNeutral(const std::array<double, 3>& light) {
  const ICtCp color = ICtCpOfNits(light[0] * 203.0, light[1] * 203.0, light[2] * 203.0);
  return DeltaEItp(color, {color.i, 0.0, 0.0});
}

/// The first picture in linear BT.2020 light.
PX::VideoFrameRef LinearPicture(const fs::path& clip) {
  const auto picture = OpenPictures(clip, {24, 1})->Next();
  orvmediatypes::color::ColorDescription linear;
  linear.primaries = 9;
  linear.transfer = 8;
  return ConvertToFloat(picture->frame, orvmediatypes::color::ColorSpace(linear), 203);
}

/// The grey patches of the colour chart that the clip shows, centres in pixels.
constexpr std::array<std::array<int, 2>, 6> kGreyPatches = {
    {{291, 858}, {535, 864}, {781, 866}, {1026, 872}, {1271, 876}, {1523, 881}}};

TEST(ClipMediaGrey, OfHlgGetsNoCast) {
  const fs::path clip = kFolder / "hlg10-color-test.mp4";
  if (!fs::exists(clip)) GTEST_SKIP() << "no media";
  const ScratchFolder folder;
  const RunResult run = RunQuillon({"map", "--codec", "ffv1", "--depth", "16", "--chroma", "444",
                                    "--frames", "0", clip, folder / "mapped.mkv"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const PX::VideoFrameRef source = LinearPicture(clip);
  const PX::VideoFrameRef mapped = LinearPicture(folder / "mapped.mkv");
  for (const auto& [x, y] : kGreyPatches) {
    const double before = DistanceFromNeutral(MeanLight(ViewFloatPixels(source), x, y));
    const double after = DistanceFromNeutral(MeanLight(ViewFloatPixels(mapped), x, y));
    RecordProperty("patch_at_" + std::to_string(x),
                   std::to_string(before) + " -> " + std::to_string(after));
    // The chart was not filmed quite neutral: what counts is what the mapping adds.
    EXPECT_LE(after, before + 0.1) << "patch at " << x;
  }
}

}  // namespace
