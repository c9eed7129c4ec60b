#include <map>
#include <memory>

#include <avif/avif.h>
#include <gtest/gtest.h>

#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;

namespace {

constexpr int kWidth = 66;
constexpr int kHeight = 35;

StillOutput GradientOutput(int primaries, int transfer) {
  StillOutput output;
  output.frame = MakePicture(kWidth, kHeight, Tagged(primaries, transfer),
                             [](int x, int y) { return Gradient(x, y, kWidth, kHeight); });
  return output;
}

struct ImageFacts {
  unsigned depth, primaries, transfer, matrix;
  avifPixelFormat format;
  avifRange range;
  bool alpha;
};

ImageFacts FactsOf(const Bytes& file) {
  const std::unique_ptr<avifDecoder, decltype(&avifDecoderDestroy)> decoder(avifDecoderCreate(),
                                                                            avifDecoderDestroy);
  EXPECT_EQ(avifDecoderSetIOMemory(decoder.get(), file.data(), file.size()), AVIF_RESULT_OK);
  EXPECT_EQ(avifDecoderParse(decoder.get()), AVIF_RESULT_OK);
  EXPECT_EQ(avifDecoderNextImage(decoder.get()), AVIF_RESULT_OK);
  const avifImage& image = *decoder->image;
  return {image.depth,
          image.colorPrimaries,
          image.transferCharacteristics,
          image.matrixCoefficients,
          image.yuvFormat,
          image.yuvRange,
          decoder->alphaPresent != 0};
}

Bytes Written(const StillOutput& output) {
  const ScratchFolder folder;
  WriteStill(output, folder / "a.avif");
  return ReadBytes(folder / "a.avif");
}

}  // namespace

TEST(WriteAvif, TagsWithCodePoints) {
  const ImageFacts pq = FactsOf(Written(GradientOutput(9, 16)));
  EXPECT_EQ(pq.depth, 10U);
  EXPECT_EQ(pq.primaries, 9U);
  EXPECT_EQ(pq.transfer, 16U);
  EXPECT_EQ(pq.matrix, 9U);
  EXPECT_EQ(pq.format, AVIF_PIXEL_FORMAT_YUV444);
  EXPECT_EQ(pq.range, AVIF_RANGE_FULL);
  EXPECT_FALSE(pq.alpha);
  EXPECT_EQ(FactsOf(Written(GradientOutput(1, 13))).matrix, 1U);
  EXPECT_EQ(FactsOf(Written(GradientOutput(12, 13))).matrix, 6U);
}

TEST(WriteAvif, TakesTheMatrixThatTheColourSpaceNames) {
  StillOutput output = GradientOutput(9, 16);
  auto description = output.frame->GetColorSpace().Description();
  description.matrix = 6;
  output.frame->SetColorSpace(orvmediatypes::color::ColorSpace(description));
  EXPECT_EQ(FactsOf(Written(output)).matrix, 6U);
}

TEST(WriteAvif, ComesCloseAtEveryDepth) {
  // Four codes at 8 bits; more bits are coded more finely.
  const std::map<int, float> tolerances{{8, 0.016F}, {10, 0.006F}, {12, 0.003F}};
  for (const auto& [depth, tolerance] : tolerances) {
    StillOutput output = GradientOutput(1, 13);
    output.depth = depth;
    const Bytes file = Written(output);
    EXPECT_EQ(FactsOf(file).depth, static_cast<unsigned>(depth));
    const Still still = ReadStillFromBytes(file);
    EXPECT_LE(LargestDifference(AsFloat(still.frame), output.frame), tolerance) << depth;
  }
}

TEST(WriteAvif, RefusesEightBitsForHdr) {
  StillOutput output = GradientOutput(9, 16);
  output.depth = 8;
  EXPECT_EQ(FailureOf([&] { Written(output); })->kind, StillErrorKind::NotSupported);
  output.depth = 14;
  EXPECT_EQ(FailureOf([&] { Written(output); })->kind, StillErrorKind::NotSupported);
}

TEST(WriteAvif, WritesOnePixel) {
  StillOutput output;
  output.frame = MakePicture(1, 1, Tagged(9, 16), [](int, int) { return Rgb{0.5F, 0.5F, 0.5F}; });
  const Still still = ReadStillFromBytes(Written(output));
  EXPECT_EQ(still.frame->GetBounds().width, 1);
  EXPECT_NEAR(PixelAt(AsFloat(still.frame), 0, 0)[1], 0.5F, 0.005F);
}
