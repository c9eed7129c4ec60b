// Real pictures, where the folder with them is there.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "host/kestrel/FrameInterfaces.h"
#include "tests/tools/RunQuillon.h"
#include "tools/quillon/io/Still.h"

using namespace Quillon::Cli;

namespace {

namespace fs = std::filesystem;

/// Eight-bit samples of a mapped picture.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> samples;  // blue, green, red a pixel
};

Picture ReadPicture(const std::string& path) {
  const Still still = ReadStill(path);
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(still.frame);
  const auto bounds = still.frame->GetBounds();
  Picture picture{bounds.width, bounds.height, {}};
  for (int y = 0; y < bounds.height; ++y) {
    const auto* pixel = static_cast<const std::uint8_t*>(memory->GetData()) +
                        static_cast<std::ptrdiff_t>(y) * memory->GetRowBytes();
    for (int x = 0; x < bounds.width; ++x, pixel += 4) {
      picture.samples.insert(picture.samples.end(), pixel, pixel + 3);
    }
  }
  return picture;
}

double MeanDifference(const Picture& first, const Picture& second) {
  double sum = 0.0;
  for (std::size_t i = 0; i < first.samples.size(); ++i) {
    sum += std::abs(first.samples[i] - second.samples[i]);
  }
  return sum / static_cast<double>(first.samples.size());
}

class Media : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::is_directory(QUILLON_MEDIA_DIR)) GTEST_SKIP() << "no media in " QUILLON_MEDIA_DIR;
  }

  /// Maps a picture of the folder to an 8-bit sRGB PNG and reads it back.
  Picture Mapped(const std::string& file, const std::vector<std::string>& options = {}) {
    const std::string out = scratch_ / (fs::path(file).filename().string() + ".png");
    std::vector<std::string> arguments = {"map", std::string(QUILLON_MEDIA_DIR "/") + file, out};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const RunResult run = RunQuillon(arguments);
    EXPECT_EQ(run.exitCode, 0) << file << ": " << run.err;
    return run.exitCode == 0 ? ReadPicture(out) : Picture{};
  }

  ScratchFolder scratch_;
};

TEST_F(Media, OneSetOfColoursComesOutAlikeFromThreeContainers) {
  const Picture srgb = Mapped("avif/colors_hdr_srgb.avif");
  const Picture p3 = Mapped("avif/colors_hdr_p3.avif");
  const Picture rec2020 = Mapped("avif/colors_hdr_rec2020.avif");
  ASSERT_EQ(srgb.samples.size(), 200U * 200U * 3U);
  EXPECT_LT(MeanDifference(srgb, p3), 1.0);
  EXPECT_LT(MeanDifference(srgb, rec2020), 1.0);
}

TEST_F(Media, APictureComesOutAlikeFromRec709AndFromXYZ) {
  const Picture rec709 = Mapped("exr/Chroma_Rec709.exr", {"--peak", "1500"});
  const Picture xyz = Mapped("exr/Chroma_XYZ.exr", {"--peak", "1500"});
  ASSERT_EQ(rec709.samples.size(), 610U * 406U * 3U);
  ASSERT_EQ(rec709.samples.size(), xyz.samples.size());
  EXPECT_LT(MeanDifference(rec709, xyz), 0.5);
}

TEST_F(Media, RealPicturesMap) {
  for (const char* file :
       {"exr/Desk.exr", "exr/hdri_hall.exr", "exr/hdri_night.exr", "exr/Carrots_AP0.exr",
        "exr/GrayRampsHorizontal_Y.exr", "exr/hdr_test_chart.exr", "avif/seine_hdr_rec2020.avif",
        "avif/seine_pq_420_limited.avif", "avif/tp_10b_420_full.avif", "png/hdr_room_hlg.png",
        "png/seine_pq_cicp.png", "png/cicp_pq_cLLI_mDCV.png"}) {
    EXPECT_FALSE(Mapped(file).samples.empty()) << file;
  }
}

TEST_F(Media, PixelsThatAreNotFiniteMap) {
  const Picture picture = Mapped("exr/BrightRingsNanInf.exr");
  EXPECT_EQ(picture.width, 800);
}

TEST_F(Media, AnUntaggedPictureIsRefusedUntilItIsTagged) {
  const std::string file = QUILLON_MEDIA_DIR "/png/hdr_test_chart_pq.png";
  const RunResult run = RunQuillon({"map", file, scratch_ / "out.png"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_NE(run.err.find("--from"), std::string::npos) << run.err;
  EXPECT_TRUE(scratch_.Names().empty());
  EXPECT_FALSE(Mapped("png/hdr_test_chart_pq.png", {"--from", "bt2100-pq"}).samples.empty());
}

TEST_F(Media, APQSignalAndTheLightItStandsForMapAlike) {
  const Picture signal =
      Mapped("exr/PQ_BT2020_chart_signal.exr", {"--from", "bt2100-pq", "--peak", "10000"});
  const Picture light = Mapped("exr/PQ_BT2020_chart_linear.exr",
                               {"--from-cicp", "9/8/0", "--peak", "10000", "--white", "100"});
  const Picture signal100 =
      Mapped("exr/PQ_BT2020_chart_signal.exr",
             {"--from", "bt2100-pq", "--peak", "10000", "--white", "100", "--overwrite"});
  ASSERT_EQ(signal100.samples.size(), light.samples.size());
  EXPECT_LT(MeanDifference(signal100, light), 0.01);
  EXPECT_GT(MeanDifference(signal, light), 1.0);  // another white is another picture
}

}  // namespace
