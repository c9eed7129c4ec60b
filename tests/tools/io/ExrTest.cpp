#include <cmath>
#include <limits>
#include <map>

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfMultiPartOutputFile.h>
#include <ImfOutputFile.h>
#include <ImfOutputPart.h>
#include <ImfPartType.h>
#include <ImfRgbaFile.h>
#include <ImfStandardAttributes.h>
#include <ImfTileDescription.h>
#include <ImfTiledOutputFile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/io/StillTestSupport.h"

using namespace Quillon::Cli;
using orvmediatypes::color::ColorDescription;
using ::testing::HasSubstr;

namespace {

/// Channels of one type, all with the pixels of the data window in rows.
using FloatChannels = std::map<std::string, std::vector<float>>;

Imf::FrameBuffer FloatBuffer(const Imath::Box2i& data, FloatChannels& channels) {
  const int width = data.max.x - data.min.x + 1;
  const int height = data.max.y - data.min.y + 1;
  Imf::FrameBuffer buffer;
  for (auto& [name, values] : channels) {
    buffer.insert(name, Imf::Slice::Make(Imf::FLOAT, values.data(), data.min, width, height,
                                         sizeof(float), sizeof(float) * std::size_t(width)));
  }
  return buffer;
}

void AddChannels(Imf::Header& header, const FloatChannels& channels) {
  for (const auto& [name, values] : channels) {
    header.channels().insert(name, Imf::Channel(Imf::FLOAT));
  }
}

/// Writes an EXR of float channels and reads it back.
Still RoundTrip(Imf::Header header, FloatChannels channels) {
  const ScratchFolder folder;
  AddChannels(header, channels);
  {
    Imf::OutputFile file((folder / "a.exr").c_str(), header);
    file.setFrameBuffer(FloatBuffer(header.dataWindow(), channels));
    file.writePixels(header.dataWindow().max.y - header.dataWindow().min.y + 1);
  }
  return ReadStill(folder / "a.exr");
}

FloatChannels TwoByOne(float r0, float g0, float b0, float r1, float g1, float b1) {
  return {{"R", {r0, r1}}, {"G", {g0, g1}}, {"B", {b0, b1}}};
}

ColorDescription ColorsOf(const Still& still) { return still.frame->GetColorSpace().Description(); }

Imath::Box2i Box(int left, int top, int right, int bottom) {
  return {Imath::V2i(left, top), Imath::V2i(right, bottom)};
}

}  // namespace

TEST(ReadExr, GivesFloatPixelsUnchanged) {
  const Still still = RoundTrip(Imf::Header(2, 1), TwoByOne(0.1F, -2.5F, 1e9F, 0, 1e-30F, 4));
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{0.1F, -2.5F, 1e9F}));
  EXPECT_EQ(PixelAt(still.frame, 1, 0), (Rgb{0, 1e-30F, 4}));
  EXPECT_TRUE(still.remarks.empty());
}

TEST(ReadExr, LetsNanAndInfinityPass) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  const Still still = RoundTrip(Imf::Header(2, 1), TwoByOne(nan, infinity, -infinity, 1, 1, 1));
  EXPECT_TRUE(std::isnan(PixelAt(still.frame, 0, 0)[0]));
  EXPECT_EQ(PixelAt(still.frame, 0, 0)[1], infinity);
  EXPECT_EQ(PixelAt(still.frame, 0, 0)[2], -infinity);
}

TEST(ReadExr, IsLinearBt709WithoutChromaticities) {
  const Still still = RoundTrip(Imf::Header(2, 1), TwoByOne(0, 0, 0, 1, 1, 1));
  EXPECT_EQ(ColorsOf(still).primaries, 1);
  EXPECT_EQ(ColorsOf(still).transfer, 8);
  EXPECT_TRUE(ColorsOf(still).fullRange);
}

TEST(ReadExr, NamesKnownChromaticitiesByCodePoint) {
  Imf::Header header(2, 1);
  Imf::addChromaticities(
      header, {{0.708F, 0.292F}, {0.170F, 0.797F}, {0.131F, 0.046F}, {0.31271F, 0.32902F}});
  EXPECT_EQ(ColorsOf(RoundTrip(header, TwoByOne(0, 0, 0, 1, 1, 1))).primaries, 9);
}

TEST(ReadExr, KeepsOtherChromaticitiesAsCoordinates) {
  Imf::Header header(2, 1);
  Imf::addChromaticities(
      header, {{0.7347F, 0.2653F}, {0.0F, 1.0F}, {0.0001F, -0.0770F}, {0.32168F, 0.33767F}});
  const ColorDescription colors = ColorsOf(RoundTrip(header, TwoByOne(0, 0, 0, 1, 1, 1)));
  EXPECT_EQ(colors.primaries, 2);
  EXPECT_FLOAT_EQ(static_cast<float>(colors.chromaticities.red.x), 0.7347F);
  EXPECT_FLOAT_EQ(static_cast<float>(colors.chromaticities.blue.y), -0.0770F);
  EXPECT_FLOAT_EQ(static_cast<float>(colors.chromaticities.white.x), 0.32168F);
}

TEST(ReadExr, LeavesPrimariesOpenWhereChromaticitiesDescribeNone) {
  Imf::Header header(2, 1);
  Imf::addChromaticities(header, {{0.3F, 0.3F}, {0.3F, 0.3F}, {0.3F, 0.3F}, {0.3F, 0.3F}});
  const Still still = RoundTrip(header, TwoByOne(0, 0, 0, 1, 1, 1));
  EXPECT_EQ(ColorsOf(still).primaries, 0);
  EXPECT_TRUE(HasRemark(still, "chromaticities"));
}

TEST(ReadExr, GivesWhiteLuminanceAndRemarksOnPixelAspect) {
  Imf::Header header(2, 1, 2.0F);
  Imf::addWhiteLuminance(header, 100.0F);
  const Still still = RoundTrip(header, TwoByOne(0, 0, 0, 1, 1, 1));
  EXPECT_EQ(still.whiteNits, 100.0F);
  EXPECT_TRUE(HasRemark(still, "pixel aspect ratio 2"));
}

TEST(ReadExr, IgnoresAWhiteLuminanceThatCannotBe) {
  for (const float nits : {0.0F, -100.0F, std::numeric_limits<float>::quiet_NaN(), 1.1e6F}) {
    Imf::Header header(2, 1);
    Imf::addWhiteLuminance(header, nits);
    const Still still = RoundTrip(header, TwoByOne(0, 0, 0, 1, 1, 1));
    EXPECT_EQ(still.whiteNits, 0.0F) << nits;
    EXPECT_TRUE(HasRemark(still, "whiteLuminance"));
  }
}

TEST(ReadExr, DropsAlphaWithARemarkUnlessItIsOpaque) {
  FloatChannels channels = TwoByOne(1, 2, 3, 4, 5, 6);
  channels["A"] = {1.0F, 1.0F};
  EXPECT_TRUE(RoundTrip(Imf::Header(2, 1), channels).remarks.empty());
  channels["A"] = {1.0F, 0.25F};
  const Still still = RoundTrip(Imf::Header(2, 1), channels);
  EXPECT_TRUE(HasRemark(still, "alpha channel dropped"));
  EXPECT_EQ(PixelAt(still.frame, 1, 0), (Rgb{4, 5, 6}));
}

TEST(ReadExr, ReadsLuminanceAsGrey) {
  const Still still = RoundTrip(Imf::Header(2, 1), {{"Y", {0.25F, 7.0F}}});
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{0.25F, 0.25F, 0.25F}));
  EXPECT_EQ(PixelAt(still.frame, 1, 0), (Rgb{7, 7, 7}));
}

TEST(ReadExr, ReadsMissingColoursAsZero) {
  const Still still = RoundTrip(Imf::Header(2, 1), {{"G", {0.5F, 1.5F}}});
  EXPECT_EQ(PixelAt(still.frame, 1, 0), (Rgb{0, 1.5F, 0}));
  EXPECT_TRUE(HasRemark(still, "no channel R"));
  EXPECT_TRUE(HasRemark(still, "no channel B"));
}

TEST(ReadExr, ReadsHalfAndUnsignedChannels) {
  const ScratchFolder folder;
  Imf::Header header(2, 1);
  header.channels().insert("R", Imf::Channel(Imf::HALF));
  header.channels().insert("G", Imf::Channel(Imf::UINT));
  header.channels().insert("B", Imf::Channel(Imf::FLOAT));
  std::vector<Imath::half> red{Imath::half(0.5F), Imath::half(-3.0F)};
  std::vector<unsigned> green{7, 100000};
  std::vector<float> blue{1.25F, 2.5F};
  {
    Imf::OutputFile file((folder / "a.exr").c_str(), header);
    Imf::FrameBuffer buffer;
    buffer.insert("R", Imf::Slice(Imf::HALF, reinterpret_cast<char*>(red.data()), 2, 4));
    buffer.insert("G", Imf::Slice(Imf::UINT, reinterpret_cast<char*>(green.data()), 4, 8));
    buffer.insert("B", Imf::Slice(Imf::FLOAT, reinterpret_cast<char*>(blue.data()), 4, 8));
    file.setFrameBuffer(buffer);
    file.writePixels(1);
  }
  const Still still = ReadStill(folder / "a.exr");
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{0.5F, 7, 1.25F}));
  EXPECT_EQ(PixelAt(still.frame, 1, 0), (Rgb{-3, 100000, 2.5F}));
}

TEST(ReadExr, FillsThePictureAroundASmallDataWindowWithBlack) {
  const Imf::Header header(Box(10, 20, 13, 22), Box(11, 21, 12, 21));
  const Still still = RoundTrip(header, TwoByOne(1, 2, 3, 4, 5, 6));
  ASSERT_EQ(still.frame->GetBounds().width, 4);
  ASSERT_EQ(still.frame->GetBounds().height, 3);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 4; ++x) {
      Rgb expected{0, 0, 0};
      if (y == 1 && x == 1) expected = {1, 2, 3};
      if (y == 1 && x == 2) expected = {4, 5, 6};
      EXPECT_EQ(PixelAt(still.frame, x, y), expected) << x << ", " << y;
    }
  }
  EXPECT_TRUE(HasRemark(still, "data window"));
}

TEST(ReadExr, CropsADataWindowThatReachesBeyondTheDisplayWindow) {
  const Imath::Box2i data = Box(-3, -2, 6, 200);
  const Imf::Header header(Box(0, 0, 1, 150), data);
  FloatChannels channels;
  for (int y = data.min.y; y <= data.max.y; ++y) {
    for (int x = data.min.x; x <= data.max.x; ++x) {
      channels["R"].push_back(static_cast<float>(x));
      channels["G"].push_back(static_cast<float>(y));
      channels["B"].push_back(1.0F);
    }
  }
  const Still still = RoundTrip(header, channels);
  ASSERT_EQ(still.frame->GetBounds().width, 2);
  ASSERT_EQ(still.frame->GetBounds().height, 151);
  for (int y = 0; y < 151; ++y) {
    EXPECT_EQ(PixelAt(still.frame, 0, y), (Rgb{0, static_cast<float>(y), 1}));
    EXPECT_EQ(PixelAt(still.frame, 1, y), (Rgb{1, static_cast<float>(y), 1}));
  }
}

TEST(ReadExr, GivesBlackWhereTheWindowsDoNotMeet) {
  const Imf::Header header(Box(0, 0, 3, 3), Box(100, 100, 101, 100));
  const Still still = RoundTrip(header, TwoByOne(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(PixelAt(still.frame, 3, 3), (Rgb{0, 0, 0}));
}

TEST(ReadExr, ReadsTiledFilesAndTheirUpperLevelsOnly) {
  const ScratchFolder folder;
  constexpr int kWidth = 150;
  constexpr int kHeight = 130;
  Imf::Header header(kWidth, kHeight);
  header.setTileDescription(Imf::TileDescription(32, 32, Imf::MIPMAP_LEVELS));
  FloatChannels channels;
  for (int i = 0; i < kWidth * kHeight; ++i) {
    channels["R"].push_back(static_cast<float>(i % kWidth));
    channels["G"].push_back(static_cast<float>(i / kWidth));
    channels["B"].push_back(static_cast<float>(i));
  }
  AddChannels(header, channels);
  {
    Imf::TiledOutputFile file((folder / "a.exr").c_str(), header);
    file.setFrameBuffer(FloatBuffer(header.dataWindow(), channels));
    for (int level = 0; level < file.numLevels(); ++level) {
      file.writeTiles(0, file.numXTiles(level) - 1, 0, file.numYTiles(level) - 1, level);
    }
  }
  const Still still = ReadStill(folder / "a.exr");
  ASSERT_EQ(still.frame->GetBounds().width, kWidth);
  for (int y = 0; y < kHeight; ++y) {
    EXPECT_EQ(PixelAt(still.frame, 149, y),
              (Rgb{149, static_cast<float>(y), static_cast<float>(149 + y * kWidth)}));
  }
}

TEST(ReadExr, ReadsLuminanceAndChromaThroughOpenExr) {
  const ScratchFolder folder;
  constexpr int kSide = 80;
  const auto color = [](int x, int y) { return Gradient(x, y, kSide, kSide); };
  {
    Imf::RgbaOutputFile file((folder / "a.exr").c_str(), kSide, kSide, Imf::WRITE_YC);
    std::vector<Imf::Rgba> pixels;
    for (int i = 0; i < kSide * kSide; ++i) {
      const Rgb rgb = color(i % kSide, i / kSide);
      pixels.emplace_back(rgb[0], rgb[1], rgb[2]);
    }
    file.setFrameBuffer(pixels.data(), 1, kSide);
    file.writePixels(kSide);
  }
  const Still still = ReadStill(folder / "a.exr");
  const PX::VideoFrameRef original = MakePicture(kSide, kSide, Tagged(1, 8), color);
  EXPECT_LT(LargestDifference(still.frame, original), 0.04F);
}

TEST(ReadExr, TakesTheFirstPartThatHasColour) {
  const ScratchFolder folder;
  std::vector<Imf::Header> headers(2, Imf::Header(2, 1));
  headers[0].setName("depth");
  headers[1].setName("beauty");
  for (auto& header : headers) header.setType(Imf::SCANLINEIMAGE);
  FloatChannels depth{{"Z", {9, 9}}};
  FloatChannels beauty = TwoByOne(1, 2, 3, 4, 5, 6);
  AddChannels(headers[0], depth);
  AddChannels(headers[1], beauty);
  {
    Imf::MultiPartOutputFile file((folder / "a.exr").c_str(), headers.data(), 2);
    for (int part = 0; part < 2; ++part) {
      Imf::OutputPart output(file, part);
      output.setFrameBuffer(FloatBuffer(headers[0].dataWindow(), part == 0 ? depth : beauty));
      output.writePixels(1);
    }
  }
  EXPECT_EQ(PixelAt(ReadStill(folder / "a.exr").frame, 1, 0), (Rgb{4, 5, 6}));
}

TEST(ReadExr, RefusesAFileWithoutColour) {
  const auto failure = FailureOf([] { RoundTrip(Imf::Header(2, 1), {{"Z", {1.0F, 2.0F}}}); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::NotSupported);
  EXPECT_THAT(failure->message, HasSubstr("channels named R, G, B or Y"));
}

TEST(ReadExr, ReadsPixelsThatAreAsSmallAsEveryCompressionMakesThem) {
  constexpr int kSide = 1024;
  FloatChannels channels;
  for (const char* name : {"R", "G", "B", "A"}) channels[name].assign(kSide * kSide, 0.0F);
  for (int code = Imf::NO_COMPRESSION; code < Imf::NUM_COMPRESSION_METHODS; ++code) {
    Imf::Header header(kSide, kSide);
    header.compression() = static_cast<Imf::Compression>(code);
    const Still still = RoundTrip(header, channels);
    EXPECT_EQ(still.frame->GetBounds().width, kSide) << code;
  }
}
