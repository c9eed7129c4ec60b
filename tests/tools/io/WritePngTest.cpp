#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/kestrel/PixelFormats.h"
#include "tests/tools/io/PngFile.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

constexpr int kWidth = 33;
constexpr int kHeight = 17;

StillOutput GradientOutput(int primaries, int transfer) {
  StillOutput output;
  output.frame = MakePicture(kWidth, kHeight, Tagged(primaries, transfer),
                             [](int x, int y) { return Gradient(x, y, kWidth, kHeight); });
  return output;
}

Bytes Written(const StillOutput& output) {
  const ScratchFolder folder;
  WriteStill(output, folder / "a.png");
  return ReadBytes(folder / "a.png");
}

std::vector<std::string> ChunkNames(const Bytes& file) {
  std::vector<std::string> names;
  for (const PngChunk& chunk : ChunksOfPng(file)) names.push_back(chunk.name);
  return names;
}

}  // namespace

TEST(WritePng, KeepsCodesThroughARoundTrip) {
  for (const int depth : {8, 16}) {
    StillOutput output = GradientOutput(9, 16);
    output.depth = depth;
    const Still still = ReadStillFromBytes(Written(output));
    EXPECT_EQ(still.frame->GetPixelFormat(), depth == 8 ? RefHost::kBgra8 : RefHost::kBgra16);
    const float half = 0.5001F / static_cast<float>((1 << depth) - 1);
    EXPECT_LE(LargestDifference(AsFloat(still.frame), output.frame), half) << depth;
    EXPECT_TRUE(still.remarks.empty());
  }
}

TEST(WritePng, RoundsToTheNearestCodeAndClamps) {
  StillOutput output;
  output.frame = MakePicture(1, 1, Tagged(1, 13), [](int, int) {
    return Rgb{99.6F / 255.0F, -3.0F, 1e9F};
  });
  const Still still = ReadStillFromBytes(Written(output));
  const std::uint8_t* pixel = PixelsOf(still.frame).Row<std::uint8_t>(0);
  EXPECT_THAT(std::vector<int>(pixel, pixel + 4), ElementsAre(255, 0, 100, 255));
}

TEST(WritePng, HasEightBitsForSdrAndSixteenForHdr) {
  const auto depthOf = [](int primaries, int transfer) {
    return FindChunk(Written(GradientOutput(primaries, transfer)), "IHDR").data[8];
  };
  EXPECT_EQ(depthOf(1, 13), 8);
  EXPECT_EQ(depthOf(9, 16), 16);
  EXPECT_EQ(depthOf(9, 18), 16);
}

TEST(WritePng, HoldsRgbWithoutAlpha) {
  const Bytes header = FindChunk(Written(GradientOutput(1, 13)), "IHDR").data;
  EXPECT_THAT(header, ElementsAre(0, 0, 0, kWidth, 0, 0, 0, kHeight, 8, 2, 0, 0, 0));
}

TEST(WritePng, TagsWithCicpAlone) {
  const Bytes file = Written(GradientOutput(9, 16));
  EXPECT_THAT(FindChunk(file, "cICP").data, ElementsAre(9, 16, 0, 1));
  const auto names = ChunkNames(file);
  EXPECT_THAT(std::vector<std::string>(names.begin(), names.begin() + 3),
              ElementsAre("IHDR", "cICP", "IDAT"));
}

TEST(WritePng, AddsTheSrgbChunkToSrgb) {
  const auto names = ChunkNames(Written(GradientOutput(1, 13)));
  EXPECT_THAT(std::vector<std::string>(names.begin(), names.begin() + 4),
              ElementsAre("IHDR", "sRGB", "cICP", "IDAT"));
  EXPECT_EQ(FindChunk(Written(GradientOutput(12, 13)), "sRGB").name, "");
}

TEST(WritePng, WritesMasteringDisplayAndLightLevelsThatAreGiven) {
  StillOutput output = GradientOutput(9, 16);
  ColorDescription description = output.frame->GetColorSpace().Description();
  description.masteringChromaticities = {
      {0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}, {0.3127, 0.329}};
  description.masteringMaxLuminance = 1000.0F;
  description.masteringMinLuminance = 0.005F;
  output.frame->SetColorSpace(ColorSpace(description));
  output.light = {1000.5F, 203.0F};
  const Bytes file = Written(output);
  EXPECT_THAT(FindChunk(file, "mDCV").data,
              ElementsAre(0x84, 0xD0, 0x3E, 0x80, 0x33, 0xC2, 0x86, 0xC4, 0x1D, 0x4C, 0x0B, 0xB8,
                          0x3D, 0x13, 0x40, 0x42, 0x00, 0x98, 0x96, 0x80, 0x00, 0x00, 0x00, 0x32));
  EXPECT_THAT(FindChunk(file, "cLLI").data,
              ElementsAre(0x00, 0x98, 0xAA, 0x08, 0x00, 0x1E, 0xF9, 0xB0));
  const Still still = ReadStillFromBytes(file);
  EXPECT_FLOAT_EQ(still.light.maxCLL, 1000.5F);
  EXPECT_FLOAT_EQ(still.frame->GetColorSpace().Description().masteringMaxLuminance, 1000.0F);
}

TEST(WritePng, NamesCoordinatesThatEqualACodePoint) {
  StillOutput output = GradientOutput(9, 16);
  ColorDescription description;
  description.primaries = 2;
  description.transfer = 16;
  description.chromaticities = {{0.708, 0.292}, {0.17, 0.797}, {0.131, 0.046}, {0.3127, 0.329}};
  output.frame->SetColorSpace(ColorSpace(description));
  EXPECT_THAT(FindChunk(Written(output), "cICP").data, ElementsAre(9, 16, 0, 1));
}

TEST(WritePng, RefusesColoursWithoutCodePointsAndUnknownDepths) {
  StillOutput output = GradientOutput(9, 0);
  const auto untagged = FailureOf([&] { Written(output); });
  ASSERT_TRUE(untagged);
  EXPECT_EQ(untagged->kind, StillErrorKind::NotSupported);
  EXPECT_THAT(untagged->message, HasSubstr("CICP"));
  output = GradientOutput(9, 16);
  output.depth = 10;
  const auto depth = FailureOf([&] { Written(output); });
  ASSERT_TRUE(depth);
  EXPECT_EQ(depth->kind, StillErrorKind::NotSupported);
  EXPECT_THAT(depth->message, HasSubstr("choose 8 or 16"));
}

TEST(WritePng, WritesOnePixel) {
  StillOutput output;
  output.frame = MakePicture(1, 1, Tagged(1, 13), [](int, int) { return Rgb{1, 0, 1}; });
  EXPECT_EQ(PixelAt(AsFloat(ReadStillFromBytes(Written(output)).frame), 0, 0), (Rgb{1, 0, 1}));
}
