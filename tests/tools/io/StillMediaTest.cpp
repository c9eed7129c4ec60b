#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/FramePixels.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;
using orvmediatypes::color::ColorDescription;

namespace {

struct Expected {
  const char* file;
  int width, height;
  int primaries, transfer, matrix;
};

/// What is known of the files in the media folder.
const Expected kFiles[] = {
    {"exr/Desk.exr", 644, 874, 1, 8, 0},
    {"exr/Carrots_AP0.exr", 600, 400, 2, 8, 0},
    {"exr/Chroma_Rec709.exr", 610, 406, 1, 8, 0},
    {"exr/Chroma_XYZ.exr", 610, 406, 10, 8, 0},
    {"exr/WideColorGamut.exr", 800, 800, 1, 8, 0},
    {"exr/BrightRings.exr", 800, 800, 1, 8, 0},
    {"exr/BrightRingsNanInf.exr", 800, 800, 1, 8, 0},
    {"exr/RgbRampsDiagonal.exr", 800, 800, 1, 8, 0},
    {"exr/GrayRampsHorizontal_Y.exr", 800, 800, 1, 8, 0},
    {"exr/hdr_test_chart.exr", 1920, 1080, 1, 8, 0},
    {"exr/hdri_hall.exr", 512, 256, 1, 8, 0},
    {"png/hdr_test_chart_pq.png", 1920, 1080, 0, 0, 0},
    {"png/hdr_room_hlg.png", 676, 449, 9, 18, 0},
    {"png/cicp_pq_cLLI_mDCV.png", 8, 8, 9, 16, 0},
    {"png/seine_pq_cicp.png", 400, 300, 9, 16, 0},
    {"avif/colors_sdr_srgb.avif", 200, 200, 1, 13, 6},
    {"avif/colors_hdr_srgb.avif", 200, 200, 1, 16, 6},
    {"avif/colors_hdr_p3.avif", 200, 200, 12, 16, 6},
    {"avif/colors_hdr_rec2020.avif", 200, 200, 9, 16, 9},
    {"avif/seine_hdr_rec2020.avif", 400, 300, 9, 16, 9},
    {"avif/seine_sdr_gainmap_srgb.avif", 400, 300, 1, 13, 6},
    {"avif/hc_pattern_bt2020_1000nit_12b.avif", 1920, 1080, 9, 16, 9},
    {"avif/tp_10b_420_full.avif", 1920, 1080, 9, 16, 9},
    {"avif/seine_pq_420_limited.avif", 400, 300, 9, 16, 9},
};

class StillMedia : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::is_directory(QUILLON_MEDIA_DIR)) {
      GTEST_SKIP() << "no test media at " QUILLON_MEDIA_DIR;
    }
  }

  static Still Read(const std::string& name) {
    return ReadStill(fs::path(QUILLON_MEDIA_DIR) / name);
  }
};

PX::VideoFrameRef Convert(const PX::VideoFrameRef& frame, int primaries, int transfer) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  PX::VideoFrameRef result;
  EXPECT_EQ(KS::CreateVideoFrame(result, orvmediatypes::kLinearFloatBGRA, bounds.width,
                                 bounds.height, {}, Tagged(primaries, transfer), false, false),
            0);
  EXPECT_GE(KS::VideoFrameManipulators::CopyFrame(frame, result, 4, {}), 0);
  return result;
}

float LargestComponent(const PX::VideoFrameRef& frame) {
  const FramePixels pixels = PixelsOf(frame);
  float largest = 0.0F;
  for (int y = 0; y < pixels.height; ++y) {
    const float* row = pixels.Row<float>(y);
    for (std::ptrdiff_t i = 0; i < 4 * std::ptrdiff_t{pixels.width}; ++i) {
      if (i % 4 != 3 && std::isfinite(row[i])) largest = std::max(largest, row[i]);
    }
  }
  return largest;
}

int CountNonFinite(const PX::VideoFrameRef& frame, bool nan) {
  const FramePixels pixels = PixelsOf(frame);
  int count = 0;
  for (int y = 0; y < pixels.height; ++y) {
    const float* row = pixels.Row<float>(y);
    for (std::ptrdiff_t x = 0; x < pixels.width; ++x) {
      count += nan ? std::isnan(row[4 * x + 2]) : std::isinf(row[4 * x + 2]);
    }
  }
  return count;
}

/// Median over pixels and components of the difference, relative to the larger value.
double MedianRelativeDifference(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  std::vector<double> differences;
  const orvcore::geom::Bounds bounds = a->GetBounds();
  for (int y = 0; y < bounds.height; ++y) {
    for (int x = 0; x < bounds.width; ++x) {
      const Rgb p = PixelAt(a, x, y);
      const Rgb q = PixelAt(b, x, y);
      for (std::size_t c = 0; c < 3; ++c) {
        const double scale = std::max({std::abs(p[c]), std::abs(q[c]), 1e-3F});
        differences.push_back(std::abs(p[c] - q[c]) / scale);
      }
    }
  }
  const auto middle = differences.begin() + static_cast<std::ptrdiff_t>(differences.size() / 2);
  std::nth_element(differences.begin(), middle, differences.end());
  return *middle;
}

}  // namespace

TEST_F(StillMedia, HasTheSizesAndTagsThatAreKnown) {
  for (const Expected& expected : kFiles) {
    const Still still = Read(expected.file);
    EXPECT_EQ(still.frame->GetBounds().width, expected.width) << expected.file;
    EXPECT_EQ(still.frame->GetBounds().height, expected.height) << expected.file;
    const ColorDescription colors = still.frame->GetColorSpace().Description();
    EXPECT_EQ(colors.primaries, expected.primaries) << expected.file;
    EXPECT_EQ(colors.transfer, expected.transfer) << expected.file;
    EXPECT_EQ(colors.matrix, expected.matrix) << expected.file;
  }
}

TEST_F(StillMedia, ExrPeaksAreThoseThatAreKnown) {
  EXPECT_NEAR(LargestComponent(Read("exr/Desk.exr").frame), 234.0F, 0.5F);
  EXPECT_NEAR(LargestComponent(Read("exr/hdri_hall.exr").frame), 415.0F, 0.5F);
  EXPECT_NEAR(LargestComponent(Read("exr/pq_ramp_linear.exr").frame), 100.0F, 0.001F);
  EXPECT_NEAR(LargestComponent(Read("exr/GrayRampsHorizontal_Y.exr").frame), 18.0F, 0.5F);
}

TEST_F(StillMedia, ExrKeepsNanAndInfinity) {
  const PX::VideoFrameRef frame = Read("exr/BrightRingsNanInf.exr").frame;
  EXPECT_EQ(CountNonFinite(frame, true), 2);
  EXPECT_EQ(CountNonFinite(frame, false), 4);
}

TEST_F(StillMedia, ExrWithASmallDataWindowIsBlackAroundIt) {
  const Still still = Read("exr/hdr_test_chart.exr");
  EXPECT_EQ(PixelAt(still.frame, 156, 500), (Rgb{0, 0, 0}));
  EXPECT_EQ(PixelAt(still.frame, 157 + 1621, 500), (Rgb{0, 0, 0}));
  EXPECT_EQ(PixelAt(still.frame, 900, 372), (Rgb{0, 0, 0}));
  EXPECT_NEAR(LargestComponent(still.frame), 16.3F, 0.1F);
  EXPECT_TRUE(HasRemark(still, "data window"));
}

TEST_F(StillMedia, ExrTransparentEverywhereLosesItsAlpha) {
  const Still still = Read("exr/Carrots_AP0.exr");
  EXPECT_TRUE(HasRemark(still, "alpha channel dropped"));
  EXPECT_NEAR(LargestComponent(still.frame), 0.97F, 0.01F);
}

TEST_F(StillMedia, ExrInXyzIsTheSamePictureAsInBt709) {
  const PX::VideoFrameRef rec709 = Read("exr/Chroma_Rec709.exr").frame;
  const PX::VideoFrameRef xyz = Convert(Read("exr/Chroma_XYZ.exr").frame, 1, 8);
  EXPECT_LT(MedianRelativeDifference(rec709, xyz), 0.002);
}

TEST_F(StillMedia, PngChunksWithAWrongCrcAreIgnored) {
  const Still still = Read("png/cicp_pq_cLLI_mDCV.png");
  EXPECT_EQ(still.light, ContentLight{});
  const ColorDescription colors = still.frame->GetColorSpace().Description();
  EXPECT_EQ(colors.transfer, 16);
  EXPECT_EQ(colors.masteringMaxLuminance, 0.0F);
  EXPECT_TRUE(HasRemark(still, "PNG chunk cLLI ignored"));
  EXPECT_TRUE(HasRemark(still, "PNG chunk mDCV ignored"));
}

TEST_F(StillMedia, PngChunksHoldTheMetadataThatIsKnown) {
  const Still seine = Read("png/seine_pq_cicp.png");
  EXPECT_FLOAT_EQ(seine.light.maxCLL, 1000.0F);
  EXPECT_FLOAT_EQ(seine.light.maxFALL, 203.0F);
  EXPECT_EQ(seine.frame->GetPixelFormat(), RefHost::kBgra16);
}

TEST_F(StillMedia, PngAndAvifOfOnePhotographAgree) {
  const PX::VideoFrameRef png = AsFloat(Read("png/seine_pq_cicp.png").frame);
  const PX::VideoFrameRef avif = AsFloat(Read("avif/seine_hdr_rec2020.avif").frame);
  // The PNG, made from the AVIF, is clamped.
  const PX::VideoFrameRef clamped = MakePicture(400, 300, Tagged(9, 16), [&avif](int x, int y) {
    Rgb rgb = PixelAt(avif, x, y);
    for (float& component : rgb) component = std::clamp(component, 0.0F, 1.0F);
    return rgb;
  });
  EXPECT_LE(LargestDifference(png, clamped), 1.0F / 1023.0F);
}

TEST_F(StillMedia, AvifGivesTheStoredPlanes) {
  const Still limited = Read("avif/seine_pq_420_limited.avif");
  EXPECT_FALSE(limited.frame->GetColorSpace().Description().fullRange);
  EXPECT_EQ(limited.frame->GetPixelFormat(), RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 10));
  const Still twelve = Read("avif/hc_pattern_bt2020_1000nit_12b.avif");
  EXPECT_EQ(twelve.frame->GetPixelFormat(), RefHost::PlanarYCbCr(RefHost::ChromaFormat::C444, 12));
  // 420 limited was made from the full-range picture.
  const PX::VideoFrameRef full = AsFloat(Read("avif/seine_hdr_rec2020.avif").frame);
  EXPECT_LT(MedianRelativeDifference(AsFloat(limited.frame), full), 0.02);
}

TEST_F(StillMedia, AvifColoursAgreeInThreeContainers) {
  const PX::VideoFrameRef wide = Convert(Read("avif/colors_hdr_rec2020.avif").frame, 9, 8);
  EXPECT_LT(MedianRelativeDifference(Convert(Read("avif/colors_hdr_p3.avif").frame, 9, 8), wide),
            0.03);
  EXPECT_LT(MedianRelativeDifference(Convert(Read("avif/colors_hdr_srgb.avif").frame, 9, 8), wide),
            0.03);
}

TEST_F(StillMedia, GainMapIsRemarkedOn) {
  EXPECT_TRUE(HasRemark(Read("avif/seine_sdr_gainmap_srgb.avif"), "gain map ignored"));
}

TEST_F(StillMedia, OtherFamiliesCannotBeRead) {
  for (const char* file :
       {"heic/seine_pq_10b.heic", "jxl/seine_pq.jxl", "video/output_hdr10.mp4"}) {
    const auto failure = FailureOf([&] { Read(file); });
    ASSERT_TRUE(failure) << file;
    EXPECT_EQ(failure->kind, StillErrorKind::CannotRead) << file;
  }
}
