#include <cmath>
#include <memory>
#include <stdexcept>

#include <avif/avif.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/AvifBoxes.h"

using namespace Quillon::Cli;
using orvmediatypes::color::ColorDescription;
using ::testing::HasSubstr;

namespace {

struct DestroyImage {
  void operator()(avifImage* image) const { avifImageDestroy(image); }
};
using Image = std::unique_ptr<avifImage, DestroyImage>;

/// Code value at a place of a plane.
using CodeFunction = std::function<int(int plane, int x, int y)>;

int PlaneWidth(const avifImage& image, int plane) {
  avifPixelFormatInfo info;
  avifGetPixelFormatInfo(image.yuvFormat, &info);
  const int width = static_cast<int>(image.width);
  return plane == 0 ? width : (width + info.chromaShiftX) >> info.chromaShiftX;
}

int PlaneHeight(const avifImage& image, int plane) {
  avifPixelFormatInfo info;
  avifGetPixelFormatInfo(image.yuvFormat, &info);
  const int height = static_cast<int>(image.height);
  return plane == 0 ? height : (height + info.chromaShiftY) >> info.chromaShiftY;
}

Image MakeImage(int width, int height, int depth, avifPixelFormat format,
                const CodeFunction& code) {
  Image image(avifImageCreate(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                              static_cast<std::uint32_t>(depth), format));
  avifImageAllocatePlanes(image.get(), AVIF_PLANES_YUV);
  const int planes = format == AVIF_PIXEL_FORMAT_YUV400 ? 1 : 3;
  for (int plane = 0; plane < planes; ++plane) {
    for (int y = 0; y < PlaneHeight(*image, plane); ++y) {
      std::uint8_t* row =
          image->yuvPlanes[plane] + static_cast<std::size_t>(y) * image->yuvRowBytes[plane];
      for (int x = 0; x < PlaneWidth(*image, plane); ++x) {
        if (depth > 8) {
          reinterpret_cast<std::uint16_t*>(row)[x] = static_cast<std::uint16_t>(code(plane, x, y));
        } else {
          row[x] = static_cast<std::uint8_t>(code(plane, x, y));
        }
      }
    }
  }
  image->colorPrimaries = 9;
  image->transferCharacteristics = 16;
  image->matrixCoefficients = 9;
  return image;
}

/// Encodes without loss.
Bytes Encode(const avifImage& image) {
  const std::unique_ptr<avifEncoder, decltype(&avifEncoderDestroy)> encoder(avifEncoderCreate(),
                                                                            avifEncoderDestroy);
  encoder->speed = 9;
  encoder->minQuantizer = encoder->maxQuantizer = AVIF_QUANTIZER_LOSSLESS;
  avifRWData data = AVIF_DATA_EMPTY;
  const avifResult result = avifEncoderWrite(encoder.get(), &image, &data);
  Bytes bytes(data.data, data.data + data.size);
  avifRWDataFree(&data);
  if (result != AVIF_RESULT_OK) throw std::runtime_error(avifResultToString(result));
  return bytes;
}

int TestCode(int plane, int x, int y, int depth) {
  return (90 + 30 * plane + 2 * x + 3 * y) << (depth - 8);
}

int CodeAt(const Still& still, int plane, int x, int y, int depth) {
  const auto planes =
      orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(still.frame);
  const RefHost::Plane view = planes->GetPlane(plane);
  const auto* row = static_cast<const std::uint8_t*>(view.data) + std::ptrdiff_t{y} * view.rowBytes;
  return depth > 8 ? reinterpret_cast<const std::uint16_t*>(row)[x] : row[x];
}

ColorDescription ColorsOf(const Still& still) { return still.frame->GetColorSpace().Description(); }

/// A grey picture of 6 x 4 whose pixels all differ.
Image CountingImage(avifPixelFormat format = AVIF_PIXEL_FORMAT_YUV444) {
  return MakeImage(6, 4, 10, format,
                   [](int plane, int x, int y) { return plane == 0 ? 40 * (x + 6 * y) : 512; });
}

/// Number of the pixel of the counting picture that stands at a place.
int NumberAt(const Still& still, int x, int y) {
  return static_cast<int>(std::lround(PixelAt(still.frame, x, y)[1] * 1023.0F / 40.0F));
}

}  // namespace

TEST(ReadAvif, HandsOnThePlanesOfEveryDepthAndChromaFormat) {
  for (const int depth : {8, 10, 12}) {
    for (const auto format :
         {AVIF_PIXEL_FORMAT_YUV444, AVIF_PIXEL_FORMAT_YUV422, AVIF_PIXEL_FORMAT_YUV420}) {
      const Image image = MakeImage(17, 9, depth, format, [depth](int plane, int x, int y) {
        return TestCode(plane, x, y, depth);
      });
      const Still still = ReadStillFromBytes(Encode(*image));
      ASSERT_EQ(still.frame->GetBounds().width, 17);
      ASSERT_EQ(still.frame->GetBounds().height, 9);
      for (int plane = 0; plane < 3; ++plane) {
        for (int y = 0; y < PlaneHeight(*image, plane); ++y) {
          for (int x = 0; x < PlaneWidth(*image, plane); ++x) {
            ASSERT_EQ(CodeAt(still, plane, x, y, depth), TestCode(plane, x, y, depth))
                << "depth " << depth << ", " << avifPixelFormatToString(format) << ", plane "
                << plane << " at " << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST(ReadAvif, GivesGreyNeutralChroma) {
  for (const int depth : {8, 10}) {
    const Image image = MakeImage(5, 3, depth, AVIF_PIXEL_FORMAT_YUV400,
                                  [depth](int, int x, int y) { return TestCode(0, x, y, depth); });
    const Still still = ReadStillFromBytes(Encode(*image));
    EXPECT_EQ(CodeAt(still, 0, 4, 2, depth), TestCode(0, 4, 2, depth));
    for (const int plane : {1, 2}) {
      EXPECT_EQ(CodeAt(still, plane, 2, 1, depth), 1 << (depth - 1));
    }
  }
}

TEST(ReadAvif, TagsTheFrameWithItsCodePoints) {
  Image image = CountingImage(AVIF_PIXEL_FORMAT_YUV420);
  image->colorPrimaries = 12;
  image->transferCharacteristics = 18;
  image->matrixCoefficients = 6;
  image->yuvRange = AVIF_RANGE_LIMITED;
  image->yuvChromaSamplePosition = AVIF_CHROMA_SAMPLE_POSITION_COLOCATED;
  const Still still = ReadStillFromBytes(Encode(*image));
  EXPECT_EQ(ColorsOf(still).primaries, 12);
  EXPECT_EQ(ColorsOf(still).transfer, 18);
  EXPECT_EQ(ColorsOf(still).matrix, 6);
  EXPECT_FALSE(ColorsOf(still).fullRange);
  EXPECT_EQ(ColorsOf(still).chromaLocation, 2);
  EXPECT_TRUE(still.remarks.empty());
}

TEST(ReadAvif, TakesChromaForCentredWhereTheFileDoesNotSay) {
  EXPECT_EQ(
      ColorsOf(ReadStillFromBytes(Encode(*CountingImage(AVIF_PIXEL_FORMAT_YUV420)))).chromaLocation,
      1);
}

TEST(ReadAvif, LeavesUnspecifiedColoursOpenButGivesAMatrix) {
  Image image = CountingImage();
  image->colorPrimaries = image->transferCharacteristics = image->matrixCoefficients = 2;
  const Still still = ReadStillFromBytes(Encode(*image));
  EXPECT_EQ(ColorsOf(still).primaries, 0);
  EXPECT_EQ(ColorsOf(still).transfer, 0);
  EXPECT_EQ(ColorsOf(still).matrix, 6);
  EXPECT_TRUE(HasRemark(still, "matrix is not given"));
}

TEST(ReadAvif, RefusesAMatrixThatMeansNothing) {
  Image image = CountingImage();
  image->matrixCoefficients = static_cast<avifMatrixCoefficients>(175);
  const auto failure = FailureOf([&] { ReadStillFromBytes(Encode(*image)); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::NotSupported);
  EXPECT_NE(failure->message.find("its matrix 175 means nothing"), std::string::npos);
}

TEST(ReadAvif, DeliversRgbAsFloat) {
  for (const auto range : {AVIF_RANGE_FULL, AVIF_RANGE_LIMITED}) {
    // Planes are green, blue, red.
    Image image = MakeImage(8, 8, 10, AVIF_PIXEL_FORMAT_YUV444, [](int plane, int, int) {
      return std::array{940, 64, 502}[std::size_t(plane)];
    });
    image->matrixCoefficients = AVIF_MATRIX_COEFFICIENTS_IDENTITY;
    image->yuvRange = range;
    const Still still = ReadStillFromBytes(Encode(*image));
    ASSERT_EQ(still.frame->GetPixelFormat(), orvmediatypes::kLinearFloatBGRA);
    const Rgb expected = range == AVIF_RANGE_FULL
                             ? Rgb{502.0F / 1023.0F, 940.0F / 1023.0F, 64.0F / 1023.0F}
                             : Rgb{0.5F, 1.0F, 0.0F};
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_FLOAT_EQ(PixelAt(still.frame, 7, 7)[c], expected[c]);
    }
    EXPECT_EQ(ColorsOf(still).matrix, 0);
    EXPECT_TRUE(ColorsOf(still).fullRange);
  }
}

TEST(ReadAvif, CropsToTheCleanAperture) {
  const Image image = CountingImage();
  image->transformFlags = AVIF_TRANSFORM_CLAP;
  const avifCropRect crop{2, 1, 3, 2};
  avifDiagnostics diagnostics{};
  ASSERT_TRUE(avifCleanApertureBoxConvertCropRect(&image->clap, &crop, 6, 4,
                                                  AVIF_PIXEL_FORMAT_YUV444, &diagnostics));
  const Still still = ReadStillFromBytes(Encode(*image));
  ASSERT_EQ(still.frame->GetBounds().width, 3);
  ASSERT_EQ(still.frame->GetBounds().height, 2);
  EXPECT_EQ(CodeAt(still, 0, 0, 0, 10), 40 * 8);
  EXPECT_EQ(CodeAt(still, 0, 2, 1, 10), 40 * 16);
}

TEST(ReadAvif, CropsSubsampledChromaWithItsLuma) {
  const Image image = MakeImage(8, 8, 10, AVIF_PIXEL_FORMAT_YUV420, [](int plane, int x, int y) {
    return 100 * plane + 4 * (x + 10 * y);
  });
  image->transformFlags = AVIF_TRANSFORM_CLAP;
  const avifCropRect crop{2, 4, 4, 4};
  avifDiagnostics diagnostics{};
  ASSERT_TRUE(avifCleanApertureBoxConvertCropRect(&image->clap, &crop, 8, 8,
                                                  AVIF_PIXEL_FORMAT_YUV420, &diagnostics));
  const Still still = ReadStillFromBytes(Encode(*image));
  EXPECT_EQ(CodeAt(still, 0, 0, 0, 10), 4 * 42);
  EXPECT_EQ(CodeAt(still, 1, 0, 0, 10), 100 + 4 * 21);
  EXPECT_EQ(CodeAt(still, 2, 1, 1, 10), 200 + 4 * 32);
}

TEST(ReadAvif, TurnsAnticlockwise) {
  const Image image = CountingImage();
  image->transformFlags = AVIF_TRANSFORM_IROT;
  image->irot.angle = 1;
  const Still quarter = ReadStillFromBytes(Encode(*image));
  ASSERT_EQ(quarter.frame->GetBounds().width, 4);
  ASSERT_EQ(quarter.frame->GetBounds().height, 6);
  EXPECT_EQ(NumberAt(quarter, 0, 0), 5);
  EXPECT_EQ(NumberAt(quarter, 0, 5), 0);
  EXPECT_EQ(NumberAt(quarter, 3, 5), 18);
  EXPECT_EQ(ColorsOf(quarter).primaries, 9);
  EXPECT_EQ(ColorsOf(quarter).matrix, 0);

  image->irot.angle = 2;
  const Still half = ReadStillFromBytes(Encode(*image));
  EXPECT_EQ(NumberAt(half, 0, 0), 23);
  EXPECT_EQ(NumberAt(half, 5, 0), 18);

  image->irot.angle = 3;
  const Still threeQuarters = ReadStillFromBytes(Encode(*image));
  EXPECT_EQ(NumberAt(threeQuarters, 0, 0), 18);
  EXPECT_EQ(NumberAt(threeQuarters, 3, 0), 0);
}

TEST(ReadAvif, MirrorsAfterTurning) {
  const Image image = CountingImage();
  image->transformFlags = AVIF_TRANSFORM_IMIR;
  image->imir.mode = 0;
  EXPECT_EQ(NumberAt(ReadStillFromBytes(Encode(*image)), 0, 0), 18);
  image->imir.mode = 1;
  EXPECT_EQ(NumberAt(ReadStillFromBytes(Encode(*image)), 0, 0), 5);
  image->transformFlags = AVIF_TRANSFORM_IROT | AVIF_TRANSFORM_IMIR;
  image->irot.angle = 1;
  EXPECT_EQ(NumberAt(ReadStillFromBytes(Encode(*image)), 0, 0), 23);
}

TEST(ReadAvif, TurnsPicturesWithoutTags) {
  const Image image = CountingImage();
  image->colorPrimaries = image->transferCharacteristics = 2;
  image->transformFlags = AVIF_TRANSFORM_IROT;
  image->irot.angle = 2;
  const Still still = ReadStillFromBytes(Encode(*image));
  EXPECT_EQ(NumberAt(still, 0, 0), 23);
  EXPECT_EQ(ColorsOf(still).primaries, 0);
  EXPECT_EQ(ColorsOf(still).transfer, 0);
}

TEST(ReadAvif, DropsAlphaWithARemarkUnlessItIsOpaque) {
  const Image image = CountingImage();
  avifImageAllocatePlanes(image.get(), AVIF_PLANES_A);
  auto* alpha = reinterpret_cast<std::uint16_t*>(image->alphaPlane);
  const std::size_t samples = std::size_t{image->alphaRowBytes} * image->height / 2;
  std::fill_n(alpha, samples, std::uint16_t{1023});
  EXPECT_TRUE(ReadStillFromBytes(Encode(*image)).remarks.empty());
  alpha[3] = 100;
  EXPECT_TRUE(HasRemark(ReadStillFromBytes(Encode(*image)), "alpha channel dropped"));
}

TEST(ReadAvif, NamesAnIccProfile) {
  const Image image = CountingImage();
  const Bytes profile(200, 1);
  avifImageSetProfileICC(image.get(), profile.data(), profile.size());
  EXPECT_TRUE(HasRemark(ReadStillFromBytes(Encode(*image)), "ICC profile ignored"));
}

TEST(ReadAvif, ReadsGrids) {
  const Image cell = MakeImage(64, 64, 10, AVIF_PIXEL_FORMAT_YUV444,
                               [](int, int x, int y) { return 4 * (x + y); });
  const std::unique_ptr<avifEncoder, decltype(&avifEncoderDestroy)> encoder(avifEncoderCreate(),
                                                                            avifEncoderDestroy);
  encoder->speed = 9;
  encoder->minQuantizer = encoder->maxQuantizer = AVIF_QUANTIZER_LOSSLESS;
  const avifImage* cells[] = {cell.get(), cell.get()};
  ASSERT_EQ(avifEncoderAddImageGrid(encoder.get(), 2, 1, cells, AVIF_ADD_IMAGE_FLAG_SINGLE),
            AVIF_RESULT_OK);
  avifRWData data = AVIF_DATA_EMPTY;
  ASSERT_EQ(avifEncoderFinish(encoder.get(), &data), AVIF_RESULT_OK);
  const Bytes bytes(data.data, data.data + data.size);
  avifRWDataFree(&data);
  const Still still = ReadStillFromBytes(bytes);
  ASSERT_EQ(still.frame->GetBounds().width, 128);
  EXPECT_EQ(CodeAt(still, 0, 127, 63, 10), 4 * 126);
}

TEST(ReadAvif, RefusesOtherFilesOfItsFamily) {
  Bytes file = Encode(*CountingImage());
  for (std::size_t at = 8; at < 32; at += 4) {
    if (at == 12) continue;
    const std::string brand = at == 8 ? "mif1" : "heic";
    std::copy(brand.begin(), brand.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
  }
  const auto failure = FailureOf([&] { ReadStillFromBytes(file); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::CannotRead);
  EXPECT_THAT(failure->message, HasSubstr("no AVIF file"));
}

TEST(ScanAvifBoxes, FindsTheGainMapBrand) {
  Bytes file = Encode(*CountingImage());
  EXPECT_FALSE(ScanAvifBoxes(file).hasGainMap);
  const std::string brand = "tmap";
  std::copy(brand.begin(), brand.end(), file.begin() + 20);
  EXPECT_TRUE(ScanAvifBoxes(file).hasGainMap);
  EXPECT_TRUE(HasRemark(ReadStillFromBytes(file), "gain map ignored"));
}

TEST(ScanAvifBoxes, ReadsLargeAndOpenSizes) {
  const Bytes open{0, 0, 0, 0, 'm', 'd', 'a', 't', 1, 2, 3};
  EXPECT_TRUE(ScanAvifBoxes(open).complete);
  Bytes large{0, 0, 0, 1, 'm', 'd', 'a', 't', 0, 0, 0, 0, 0, 0, 0, 17, 1};
  EXPECT_TRUE(ScanAvifBoxes(large).complete);
  large[15] = 18;
  EXPECT_FALSE(ScanAvifBoxes(large).complete);
  large[8] = 0xFF;
  EXPECT_FALSE(ScanAvifBoxes(large).complete);
  const Bytes tooSmall{0, 0, 0, 7, 'f', 'r', 'e', 'e'};
  EXPECT_FALSE(ScanAvifBoxes(tooSmall).complete);
}
