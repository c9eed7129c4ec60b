#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "curves/HalfFloat.h"
#include "host/chromant/Conversion.h"
#include "tests/refhost/chromant/Samples.h"

using orvmediatypes::kLinearFloatBGRA;
using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
constexpr int kInvalidArgument = static_cast<int>(0xA00F000EU);
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

const ColorSpace kPQ = Space(9, 16);
const ColorSpace kSRGB = Space(1, 13);
const ColorSpace kLinear709 = Space(1, 8);

/// One float pixel into another format of the same colour space.
template <class Component>
std::array<Component, 4> Stored(const std::array<float, 4>& pixel, PixelFormat format) {
  std::array<Component, 4> stored{};
  EXPECT_EQ(CHR::ConvertFrame(pixel.data(), stored.data(), 1, 1, kSRGB, kFloatBGRA, 16, kSRGB,
                              format, 16, White(203)),
            0);
  return stored;
}

template <class Component>
std::array<float, 4> Loaded(const std::array<Component, 4>& stored, PixelFormat format) {
  std::array<float, 4> pixel{};
  EXPECT_EQ(CHR::ConvertFrame(stored.data(), pixel.data(), 1, 1, kSRGB, format, 16, kSRGB,
                              kFloatBGRA, 16, White(203)),
            0);
  return pixel;
}

/// The code that one pixel, 4 by 2 in memory, converts with.
struct Request {
  int width = 1;
  int height = 2;
  ColorSpace source = kPQ;
  PixelFormat sourceFormat = kFloatBGRA;
  int sourceRowBytes = 64;
  ColorSpace destination = kSRGB;
  PixelFormat destinationFormat = kFloatBGRA;
  int destinationRowBytes = 64;

  int Run() const {
    std::array<float, 32> from{};
    std::array<float, 32> to{};
    return RunOn(from.data(), to.data());
  }

  int RunOn(const void* from, void* to) const {
    return CHR::ConvertFrame(from, to, width, height, source, sourceFormat, sourceRowBytes,
                             destination, destinationFormat, destinationRowBytes, White(203));
  }
};

template <class Value>
int CodeWith(Value Request::*field, const Value& value) {
  Request request;
  request.*field = value;
  return request.Run();
}

}  // namespace

TEST(ConvertFrame, AcceptsItsFourFormatsBothWays) {
  for (const PixelFormat from : {kFloatBGRA, kHalfBGRA, k16BitBGRA, k8BitBGRA}) {
    for (const PixelFormat to : {kFloatBGRA, kHalfBGRA, k16BitBGRA, k8BitBGRA}) {
      Request request;
      request.sourceFormat = from;
      request.destinationFormat = to;
      EXPECT_EQ(request.Run(), 0);
    }
  }
}

TEST(ConvertFrame, RefusesFormatsThatItDoesNotKnow) {
  for (const PixelFormat unknown :
       {PixelFormat{}, PixelFormat{kFloatBGRA.fourCC, 0x00080132U},
        PixelFormat{kFloatBGRA.fourCC, 0x00080138U}, PixelFormat{kFloatBGRA.fourCC, 0x0000013AU},
        PixelFormat{0x32315659U, kFloatBGRA.descriptor}}) {
    EXPECT_EQ(CodeWith(&Request::sourceFormat, unknown), kNotSupported);
    EXPECT_EQ(CodeWith(&Request::destinationFormat, unknown), kNotSupported);
  }
}

TEST(ConvertFrame, RefusesColorSpacesThatItDoesNotKnow) {
  for (const ColorSpace& unknown : {ColorSpace(), Space(9, 0), Space(9, 2), Space(9, 9),
                                    Space(0, 16), Space(2, 16), Space(3, 16)}) {
    EXPECT_EQ(CodeWith(&Request::source, unknown), kNotSupported);
    EXPECT_EQ(CodeWith(&Request::destination, unknown), kNotSupported);
  }
}

TEST(ConvertFrame, RefusesNullPixels) {
  std::array<float, 32> pixels{};
  EXPECT_EQ(Request().RunOn(nullptr, pixels.data()), kInvalidArgument);
  EXPECT_EQ(Request().RunOn(pixels.data(), nullptr), kInvalidArgument);
}

TEST(ConvertFrame, RefusesSizesThatAreNotPositive) {
  for (const int size : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(CodeWith(&Request::width, size), kInvalidArgument);
    EXPECT_EQ(CodeWith(&Request::height, size), kInvalidArgument);
  }
}

TEST(ConvertFrame, RefusesRowsShorterThanTheirPixels) {
  for (const int rowBytes : {15, 0, -64}) {
    EXPECT_EQ(CodeWith(&Request::sourceRowBytes, rowBytes), kInvalidArgument);
    EXPECT_EQ(CodeWith(&Request::destinationRowBytes, rowBytes), kInvalidArgument);
  }
  EXPECT_EQ(CodeWith(&Request::sourceRowBytes, 16), 0);
  EXPECT_EQ(CodeWith(&Request::width, std::numeric_limits<int>::max()), kInvalidArgument);
}

TEST(ConvertFrame, IgnoresTheRowBytesOfASingleRow) {
  for (const int rowBytes : {1, 0, -7}) {
    Request request;
    request.height = 1;
    request.sourceRowBytes = rowBytes;
    request.destinationRowBytes = rowBytes;
    EXPECT_EQ(request.Run(), 0);
  }
}

TEST(ConvertFrame, LeavesTheDestinationAloneWhenItRefuses) {
  const std::array<float, 32> from{};
  std::array<float, 32> to;
  to.fill(0.25F);
  const auto before = to;
  Request request;
  request.source = ColorSpace();
  EXPECT_EQ(request.RunOn(from.data(), to.data()), kNotSupported);
  EXPECT_EQ(to, before);
}

TEST(ConvertFrame, GivesTheSameInPlaceAsOutOfPlace) {
  constexpr int kWidth = 601;  // several chunks and a rest
  std::vector<float> source(2 * 4 * kWidth);
  for (std::size_t i = 0; i < source.size(); ++i) {
    source[i] = static_cast<float>(i % 97) / 96.0F;
  }
  std::vector<float> outOfPlace(source.size());
  constexpr int kRowBytes = 16 * kWidth;
  ASSERT_EQ(CHR::ConvertFrame(source.data(), outOfPlace.data(), kWidth, 2, kPQ, kFloatBGRA,
                              kRowBytes, kSRGB, kFloatBGRA, kRowBytes, White(203)),
            0);
  ASSERT_EQ(CHR::ConvertFrame(source.data(), source.data(), kWidth, 2, kPQ, kFloatBGRA, kRowBytes,
                              kSRGB, kFloatBGRA, kRowBytes, White(203)),
            0);
  EXPECT_EQ(source, outOfPlace);
}

TEST(ConvertFrame, TouchesNoByteBeyondTheRowsOfOddUnalignedFrames) {
  constexpr int kWidth = 3;
  constexpr int kSourceRowBytes = 4 * kWidth + 5;
  constexpr int kDestinationRowBytes = 16 * kWidth + 3;
  std::vector<std::byte> source(1 + 3 * kSourceRowBytes, std::byte{200});
  std::vector<std::byte> destination(1 + 3 * kDestinationRowBytes, std::byte{0xA5});
  ASSERT_EQ(
      CHR::ConvertFrame(source.data() + 1, destination.data() + 1, kWidth, 3, kSRGB, k8BitBGRA,
                        kSourceRowBytes, kLinear709, kFloatBGRA, kDestinationRowBytes, White(203)),
      0);
  EXPECT_EQ(destination[0], std::byte{0xA5});
  for (int row = 0; row < 3; ++row) {
    const std::byte* start = destination.data() + 1 + row * kDestinationRowBytes;
    for (int pixel = 0; pixel < kWidth; ++pixel) {
      std::array<float, 4> bgra;
      std::memcpy(bgra.data(), start + 16 * pixel, sizeof(bgra));
      EXPECT_NEAR(bgra[0], 0.57758, 1e-5);
      EXPECT_FLOAT_EQ(bgra[3], 200.0F / 255.0F);
    }
    for (int i = 16 * kWidth; i < kDestinationRowBytes; ++i) EXPECT_EQ(start[i], std::byte{0xA5});
  }
}

TEST(ConvertFrame, ReadsAndWritesPixelsAsBlueGreenRedAlpha) {
  // Pure BT.709 red in BT.2020 is mostly red, with some green.
  std::array<float, 4> pixel = {0.0F, 0.0F, 1.0F, 0.5F};
  ASSERT_EQ(CHR::ConvertFrame(pixel.data(), pixel.data(), 1, 1, kLinear709, kFloatBGRA, 16,
                              Space(9, 8), kFloatBGRA, 16, White(203)),
            0);
  EXPECT_FLOAT_EQ(pixel[2], 0.627403895935F);
  EXPECT_FLOAT_EQ(pixel[1], 0.0690972893582F);
  EXPECT_FLOAT_EQ(pixel[0], 0.0163914388752F);
  EXPECT_EQ(pixel[3], 0.5F);
}

TEST(ConvertFrame, PassesAlphaOfAnyValueThrough) {
  for (const float alpha : {-2.0F, 0.0F, 1e-42F, 0.3F, 17.0F, kInfinity}) {
    std::array<float, 4> pixel = {0.1F, 0.2F, 0.3F, alpha};
    ASSERT_EQ(CHR::ConvertFrame(pixel.data(), pixel.data(), 1, 1, kPQ, kFloatBGRA, 16, kSRGB,
                                kFloatBGRA, 16, White(203)),
              0);
    EXPECT_EQ(pixel[3], alpha);
  }
}

TEST(ConvertFrame, NeverClampsFloats) {
  const auto bright = Converted({{1.0F, 0.5F, 0.25F}}, kPQ, kSRGB)[0];
  EXPECT_GT(bright[0], 5.0F);
  EXPECT_LT(bright[2], 0.0F);
}

TEST(ConvertFrame, RoundsIntegersToNearestAndClampsThem) {
  using Bytes = std::array<std::uint8_t, 4>;
  EXPECT_EQ(
      Stored<std::uint8_t>({0.499F / 255.0F, 0.501F / 255.0F, 254.4F / 255.0F, 1.0F}, k8BitBGRA),
      (Bytes{0, 1, 254, 255}));
  EXPECT_EQ(Stored<std::uint8_t>({-0.1F, 1.1F, -kInfinity, kInfinity}, k8BitBGRA),
            (Bytes{0, 255, 0, 255}));
  using Words = std::array<std::uint16_t, 4>;
  EXPECT_EQ(
      Stored<std::uint16_t>({0.499F / 65535.0F, 0.501F / 65535.0F, -3e38F, 3e38F}, k16BitBGRA),
      (Words{0, 1, 0, 65535}));
}

TEST(ConvertFrame, StoresNaNAsZeroInIntegers) {
  EXPECT_EQ(Stored<std::uint8_t>({kNaN, kNaN, kNaN, kNaN}, k8BitBGRA),
            (std::array<std::uint8_t, 4>{}));
  EXPECT_EQ(Stored<std::uint16_t>({kNaN, kNaN, kNaN, kNaN}, k16BitBGRA),
            (std::array<std::uint16_t, 4>{}));
}

TEST(ConvertFrame, KeepsEveryIntegerThroughFloats) {
  for (int code = 0; code < 65536; ++code) {
    const auto word = static_cast<std::uint16_t>(code);
    const std::array<std::uint16_t, 4> words = {word, word, word, word};
    ASSERT_EQ(Stored<std::uint16_t>(Loaded(words, k16BitBGRA), k16BitBGRA), words);
    const auto byte = static_cast<std::uint8_t>(code);
    const std::array<std::uint8_t, 4> bytes = {byte, byte, byte, byte};
    ASSERT_EQ(Stored<std::uint8_t>(Loaded(bytes, k8BitBGRA), k8BitBGRA), bytes);
  }
}

TEST(ConvertFrame, CopiesPixelsOfEquivalentSpacesUnchanged) {
  const std::array<float, 4> pixel = {-0.5F, 3e38F, 1e-42F, kInfinity};
  std::array<float, 4> copy{};
  ASSERT_EQ(CHR::ConvertFrame(pixel.data(), copy.data(), 1, 1, Space(1, 1), kFloatBGRA, 16,
                              Space(1, 6, 400), kFloatBGRA, 16, White(203)),
            0);
  EXPECT_EQ(copy, pixel);
}

TEST(ConvertFrame, ConvertsBetweenHlgDisplaysOfDifferentPeaks) {
  const Rgb white = Converted({{1.0F, 1.0F, 1.0F}}, Space(9, 18, 400), Space(9, 18, 1000))[0];
  EXPECT_NEAR(white[0], 0.8643, 0.01);  // 400 nits of 1000
  EXPECT_LT(white[0], 0.95F);
}

TEST(ConvertFrame, KeepsExtremePixelsFromTheirNeighboursInEveryTransfer) {
  const Rgb neighbour = {0.5F, 0.4F, 0.3F};
  const std::vector<Rgb> pixels = {neighbour,
                                   {kNaN, 0.5F, 0.5F},
                                   {kInfinity, 0.0F, -kInfinity},
                                   {3e38F, -3e38F, 1e-45F},
                                   {-1.0F, -1e-30F, -0.0F},
                                   {kInfinity, kInfinity, kInfinity},
                                   neighbour};
  for (const int from : {1, 7, 8, 13, 16, 17, 18}) {
    for (const int to : {4, 7, 8, 13, 16, 17, 18}) {
      const Rgb alone = Converted({neighbour}, Space(9, from), Space(12, to))[0];
      const auto result = Converted(pixels, Space(9, from), Space(12, to));
      EXPECT_TRUE(std::isfinite(alone[0])) << from << ' ' << to;
      EXPECT_EQ(result.front(), alone) << from << ' ' << to;
      EXPECT_EQ(result.back(), alone) << from << ' ' << to;
    }
  }
}

TEST(ConvertFrame, KeepsInfiniteGreyAndNaNToItsOwnPixel) {
  const auto result = Converted({{kInfinity, kInfinity, kInfinity}, {kNaN, 0.5F, 0.5F}, {0, 0, 0}},
                                kLinear709, Space(9, 8));
  EXPECT_EQ(result[0], (Rgb{kInfinity, kInfinity, kInfinity}));
  EXPECT_EQ(Converted({{kInfinity, kInfinity, kInfinity}}, Space(9, 8), kLinear709)[0],
            (Rgb{kInfinity, kInfinity, kInfinity}));
  EXPECT_TRUE(std::isnan(result[1][0]));
  EXPECT_EQ(result[2], (Rgb{0.0F, 0.0F, 0.0F}));
}

TEST(ConvertFrame, GivesATallFrameWhatItGivesEachOfItsRows) {
  constexpr int kWidth = 3;
  constexpr int kHeight = 101;
  std::vector<float> frame;
  for (int i = 0; i < kWidth * kHeight * 4; ++i) frame.push_back(static_cast<float>(i % 97) / 96);
  std::vector<float> byRows = frame;
  constexpr int kRowBytes = kWidth * 16;
  const auto convert = [&](float* pixels, int height) {
    return CHR::ConvertFrame(pixels, pixels, kWidth, height, Space(9, 16), kLinearFloatBGRA,
                             kRowBytes, Space(1, 13), kLinearFloatBGRA, kRowBytes, {});
  };
  EXPECT_EQ(convert(frame.data(), kHeight), 0);
  for (int row = 0; row < kHeight; ++row) {
    EXPECT_EQ(convert(byRows.data() + std::ptrdiff_t{row} * kWidth * 4, 1), 0);
  }
  EXPECT_EQ(frame, byRows);
}

TEST(HalfFloat, KeepsEveryHalfThroughFloat) {
  for (int code = 0; code < 65536; ++code) {
    const auto half = static_cast<std::uint16_t>(code);
    const float value = FromHalf(half);
    if (std::isnan(value)) {
      EXPECT_GT(half & 0x7FFF, 0x7C00);
      EXPECT_TRUE(std::isnan(FromHalf(ToHalf(value))));
    } else {
      ASSERT_EQ(ToHalf(value), half);
    }
  }
}

TEST(HalfFloat, MeansTheNumbersOfTheFormat) {
  EXPECT_EQ(FromHalf(0x3C00), 1.0F);
  EXPECT_EQ(FromHalf(0xC000), -2.0F);
  EXPECT_EQ(FromHalf(0x7BFF), 65504.0F);
  EXPECT_EQ(FromHalf(0x0001), std::ldexp(1.0F, -24));
  EXPECT_EQ(FromHalf(0x0400), std::ldexp(1.0F, -14));
  EXPECT_EQ(FromHalf(0x7C00), kInfinity);
  EXPECT_TRUE(std::signbit(FromHalf(0x8000)));
}

TEST(HalfFloat, RoundsToNearestTiesToEven) {
  EXPECT_EQ(ToHalf(1.0F + std::ldexp(1.0F, -11)), 0x3C00);
  EXPECT_EQ(ToHalf(1.0F + std::ldexp(3.0F, -11)), 0x3C02);
  EXPECT_EQ(ToHalf(std::nextafter(1.0F + std::ldexp(1.0F, -11), 2.0F)), 0x3C01);
  EXPECT_EQ(ToHalf(std::ldexp(1.0F, -25)), 0x0000);
  EXPECT_EQ(ToHalf(std::ldexp(3.0F, -25)), 0x0002);
  EXPECT_EQ(ToHalf(std::nextafter(std::ldexp(1.0F, -14), 0.0F)), 0x0400);
}

TEST(HalfFloat, BecomesInfiniteBeyondItsLargest) {
  EXPECT_EQ(ToHalf(65519.0F), 0x7BFF);
  EXPECT_EQ(ToHalf(65520.0F), 0x7C00);
  EXPECT_EQ(ToHalf(3e38F), 0x7C00);
  EXPECT_EQ(ToHalf(-kInfinity), 0xFC00);
}
