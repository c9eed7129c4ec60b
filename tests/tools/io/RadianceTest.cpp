#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/io/StillTestSupport.h"

using namespace Quillon::Cli;
using orvmediatypes::color::ColorDescription;
using ::testing::HasSubstr;

namespace {

struct Rgbe {
  std::uint8_t r, g, b, e;
};

Bytes FlatFile(const std::string& header, const std::vector<Rgbe>& pixels) {
  Bytes bytes(header.begin(), header.end());
  for (const Rgbe& p : pixels) bytes.insert(bytes.end(), {p.r, p.g, p.b, p.e});
  return bytes;
}

/// Two pixels: (1, 0.5, 0.25) and (4, 2, 0).
Still TwoPixels(const std::string& variables) {
  return ReadStillFromBytes(
      FlatFile("#?RADIANCE\n" + variables + "FORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n",
               {{128, 64, 32, 129}, {128, 64, 0, 131}}));
}

ColorDescription ColorsOf(const Still& still) { return still.frame->GetColorSpace().Description(); }

std::optional<Failure> FailureOfHeader(const std::string& variables, const std::string& size) {
  return FailureOf([&] {
    ReadStillFromBytes(FlatFile("#?RADIANCE\n" + variables + "\n" + size, {{1, 1, 1, 128}}));
  });
}

}  // namespace

TEST(ReadRadiance, ReadsFlatPixels) {
  const Still still = TwoPixels("");
  ASSERT_EQ(still.frame->GetBounds().width, 2);
  ASSERT_EQ(still.frame->GetBounds().height, 1);
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{1.0F, 0.5F, 0.25F}));
  EXPECT_EQ(PixelAt(still.frame, 1, 0), (Rgb{4.0F, 2.0F, 0.0F}));
  EXPECT_THAT(still.remarks, ::testing::ElementsAre("it tells no primaries: taken as BT.709"));
}

TEST(ReadRadiance, ReadsRunLengths) {
  const std::string header = "#?RGBE\n\n-Y 2 +X 10\n";
  Bytes bytes(header.begin(), header.end());
  for (const std::uint8_t red : {128, 64}) {
    bytes.insert(bytes.end(), {2, 2, 0, 10});
    bytes.insert(bytes.end(), {128 + 10, red});
    bytes.insert(bytes.end(), {10, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    bytes.insert(bytes.end(), {128 + 10, 0});
    bytes.insert(bytes.end(), {128 + 10, 136});
  }
  const Still still = ReadStillFromBytes(bytes);
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{128, 1, 0}));
  EXPECT_EQ(PixelAt(still.frame, 9, 1), (Rgb{64, 10, 0}));
}

TEST(ReadRadiance, ReadsTheOlderRunLengths) {
  // A run of 5, then one of 2 + 256, of the pixel before them.
  const Still still = ReadStillFromBytes(
      FlatFile("#?RADIANCE\n\n-Y 1 +X 265\n",
               {{128, 64, 32, 129}, {1, 1, 1, 5}, {128, 0, 0, 129}, {1, 1, 1, 2}, {1, 1, 1, 1}}));
  EXPECT_EQ(PixelAt(still.frame, 5, 0), (Rgb{1.0F, 0.5F, 0.25F}));
  EXPECT_EQ(PixelAt(still.frame, 6, 0), (Rgb{1, 0, 0}));
  EXPECT_EQ(PixelAt(still.frame, 264, 0), (Rgb{1, 0, 0}));
}

TEST(ReadRadiance, RefusesRunsThatDoNotFit) {
  const std::string header = "#?RGBE\n\n-Y 1 +X 10\n";
  const auto failureWith = [&header](std::initializer_list<std::uint8_t> pixels) {
    Bytes bytes(header.begin(), header.end());
    bytes.insert(bytes.end(), pixels);
    bytes.resize(bytes.size() + 100);
    return FailureOf([&] { ReadStillFromBytes(bytes); });
  };
  for (const auto& pixels : {std::initializer_list<std::uint8_t>{2, 2, 0, 10, 128 + 11, 5},
                             {2, 2, 0, 10, 11, 5},
                             {2, 2, 0, 10, 0, 5},
                             {2, 2, 0, 9, 128 + 9, 5},
                             {1, 1, 1, 3},
                             {9, 9, 9, 9, 1, 1, 1, 10}}) {
    const auto failure = failureWith(pixels);
    ASSERT_TRUE(failure) << static_cast<int>(*(pixels.end() - 2));
    EXPECT_EQ(failure->kind, StillErrorKind::CannotRead);
  }
}

TEST(ReadRadiance, IsLinearBt709WithoutPrimaries) {
  EXPECT_EQ(ColorsOf(TwoPixels("")).primaries, 1);
  EXPECT_EQ(ColorsOf(TwoPixels("")).transfer, 8);
}

TEST(ReadRadiance, HonoursPrimaries) {
  EXPECT_EQ(ColorsOf(TwoPixels("PRIMARIES= .708 .292 .170 .797 .131 .046 .3127 .3290\n")).primaries,
            9);
  const ColorDescription own =
      ColorsOf(TwoPixels("PRIMARIES=.64 .33 .29 .6 .15 .06 .3333 .3333\n"));
  EXPECT_EQ(own.primaries, 2);
  EXPECT_EQ(own.chromaticities.green, (orvmediatypes::color::Chromaticity{0.29, 0.6}));
}

TEST(ReadRadiance, IgnoresPrimariesThatDescribeNoColours) {
  const Still still = TwoPixels("PRIMARIES=0 0 0 0 0 0 0 0\n");
  EXPECT_EQ(ColorsOf(still).primaries, 0);
  EXPECT_TRUE(HasRemark(still, "PRIMARIES"));
}

TEST(ReadRadiance, DividesByEveryExposure) {
  const Still still = TwoPixels("EXPOSURE=2\nEXPOSURE= 0.25\n");
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{2.0F, 1.0F, 0.5F}));
}

TEST(ReadRadiance, DividesByColourCorrection) {
  const Still still = TwoPixels("COLORCORR=2 4 0.5\n");
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{0.5F, 0.125F, 0.5F}));
}

TEST(ReadRadiance, RefusesExposuresThatMakeNoSense) {
  for (const char* exposure : {"0", "-1", "abc", "nan", "1e300", "1 2", ""}) {
    const auto failure = FailureOfHeader(std::string("EXPOSURE=") + exposure + "\n", "-Y 1 +X 1\n");
    ASSERT_TRUE(failure) << exposure;
    EXPECT_EQ(failure->kind, StillErrorKind::CannotRead) << exposure;
    EXPECT_THAT(failure->message, HasSubstr("EXPOSURE"));
  }
}

TEST(ReadRadiance, RefusesOtherPixelFormatsAndOrientations) {
  const auto format = FailureOfHeader("FORMAT=32-bit_rle_xyze\n", "-Y 1 +X 1\n");
  ASSERT_TRUE(format);
  EXPECT_EQ(format->kind, StillErrorKind::NotSupported);
  EXPECT_THAT(format->message, HasSubstr("32-bit_rle_xyze"));
  const auto orientation = FailureOfHeader("", "+X 1 -Y 1\n");
  ASSERT_TRUE(orientation);
}

TEST(ReadRadiance, RefusesSizesThatMakeNoSense) {
  EXPECT_EQ(FailureOfHeader("", "-Y 0 +X 1\n")->kind, StillErrorKind::CannotRead);
  EXPECT_EQ(FailureOfHeader("", "-Y many +X 1\n")->kind, StillErrorKind::CannotRead);
  EXPECT_EQ(FailureOfHeader("", "-Y 70000 +X 1\n")->kind, StillErrorKind::NotSupported);
  EXPECT_EQ(FailureOfHeader("", "-Y 60000 +X 60000\n")->kind, StillErrorKind::NotSupported);
  EXPECT_EQ(FailureOfHeader("", "-Y 16384 +X 16384\n")->kind, StillErrorKind::CannotRead);
}
