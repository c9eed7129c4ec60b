#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/refhost/kestrel/Frames.h"

using RefHost::ChromaFormat;

// Flat patches against the formulae of ITU-R BT.601, BT.709 and BT.2100, written out.

namespace {

struct Color {
  double red, green, blue;
};
constexpr std::array<Color, 10> kColors{{{0.0, 0.0, 0.0},
                                         {1.0, 1.0, 1.0},
                                         {0.5, 0.5, 0.5},
                                         {1.0, 0.0, 0.0},
                                         {0.0, 1.0, 0.0},
                                         {0.0, 0.0, 1.0},
                                         {1.0, 1.0, 0.0},
                                         {0.25, 0.8, 0.6},
                                         {0.9, 0.1, 0.35},
                                         {0.02, 0.01, 0.03}}};

struct Matrix {
  int codePoint;
  double kr, kb;
};
constexpr std::array<Matrix, 4> kMatrices{
    {{1, 0.2126, 0.0722}, {6, 0.299, 0.114}, {7, 0.212, 0.087}, {9, 0.2627, 0.0593}}};

/// Codes before rounding.
std::array<double, 3> ExactCodes(const Color& color, const Matrix& matrix, int bits,
                                 bool fullRange) {
  const double luma =
      matrix.kr * color.red + (1.0 - matrix.kr - matrix.kb) * color.green + matrix.kb * color.blue;
  const double cb = 0.5 * (color.blue - luma) / (1.0 - matrix.kb);
  const double cr = 0.5 * (color.red - luma) / (1.0 - matrix.kr);
  if (fullRange) {
    const double largest = std::ldexp(1.0, bits) - 1.0;
    const double middle = std::ldexp(1.0, bits - 1);
    return {luma * largest, std::min(cb * largest + middle, largest),
            std::min(cr * largest + middle, largest)};
  }
  const double unit = std::ldexp(1.0, bits - 8);
  return {(219.0 * luma + 16.0) * unit, (224.0 * cb + 128.0) * unit, (224.0 * cr + 128.0) * unit};
}

void ExpectCodes(const NamedFormat& format, const Color& color, const Matrix& matrix,
                 bool fullRange) {
  const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 9, 7, kSrgb);
  FillWithColor(from, static_cast<float>(color.red), static_cast<float>(color.green),
                static_cast<float>(color.blue));
  const PX::VideoFrameRef to = MakeFrame(format.format, 9, 7, YCbCr(matrix.codePoint, fullRange));
  ASSERT_EQ(Copy(from, to), 0);
  const int bits = InfoOf(format.format).bits;
  const auto exact = ExactCodes(color, matrix, bits, fullRange);
  // Half a code, and the error of single precision where codes have 16 bits.
  constexpr double kTolerance = 0.52;
  for (int component = 0; component < 3; ++component) {
    for (const bool last : {false, true}) {
      const int x = last ? ComponentWidth(to, component) - 1 : 0;
      const int y = last ? ComponentHeight(to, component) - 1 : 0;
      EXPECT_NEAR(Code(to, component, x, y), exact[static_cast<std::size_t>(component)], kTolerance)
          << format.name << " matrix " << matrix.codePoint << " full " << fullRange << " component "
          << component << " colour " << color.red << " " << color.green << " " << color.blue;
    }
  }
}

TEST(YCbCrPatch, HasTheCodesOfTheFormulae) {
  for (const NamedFormat& format : YCbCrFormats()) {
    for (const Color& color : kColors) {
      for (const Matrix& matrix : kMatrices) {
        ExpectCodes(format, color, matrix, false);
        ExpectCodes(format, color, matrix, true);
      }
    }
  }
}

TEST(YCbCrPatch, DecodesToTheSignalsOfTheFormulae) {
  constexpr std::array<unsigned, 3> kCodes{300, 600, 450};
  for (const Matrix& matrix : kMatrices) {
    for (const bool fullRange : {false, true}) {
      const PX::VideoFrameRef from = MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C444, 10), 1, 1,
                                               YCbCr(matrix.codePoint, fullRange));
      for (int i = 0; i < 3; ++i) SetCode(from, i, 0, 0, kCodes[static_cast<std::size_t>(i)]);
      const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 1, 1, kSrgb);
      ASSERT_EQ(Copy(from, to), 0);

      const double luma = fullRange ? 300.0 / 1023.0 : (300.0 / 4.0 - 16.0) / 219.0;
      const double cb = fullRange ? (600.0 - 512.0) / 1023.0 : (600.0 / 4.0 - 128.0) / 224.0;
      const double cr = fullRange ? (450.0 - 512.0) / 1023.0 : (450.0 / 4.0 - 128.0) / 224.0;
      const double red = luma + 2.0 * (1.0 - matrix.kr) * cr;
      const double blue = luma + 2.0 * (1.0 - matrix.kb) * cb;
      const double green =
          (luma - matrix.kr * red - matrix.kb * blue) / (1.0 - matrix.kr - matrix.kb);
      const float* pixel = FloatPixel(to, 0, 0);
      EXPECT_NEAR(pixel[2], red, 1e-6);
      EXPECT_NEAR(pixel[1], green, 1e-6);
      EXPECT_NEAR(pixel[0], blue, 1e-6);
      EXPECT_EQ(pixel[3], 1.0F);
    }
  }
}

TEST(YCbCrPatch, KeepsSignalsBeyondTheNominalRange) {
  const PX::VideoFrameRef from =
      MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C444, 8), 2, 1, YCbCr(1, false));
  for (int x = 0; x < 2; ++x) {
    SetCode(from, 0, x, 0, x == 0 ? 254 : 1);
    SetCode(from, 1, x, 0, 128);
    SetCode(from, 2, x, 0, 128);
  }
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 2, 1, kSrgb);
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_NEAR(FloatPixel(to, 0, 0)[1], 238.0 / 219.0, 1e-6);
  EXPECT_NEAR(FloatPixel(to, 1, 0)[1], -15.0 / 219.0, 1e-6);
}

TEST(YCbCrPatch, HasGreenBlueAndRedPlanesWithTheIdentityMatrix) {
  for (const bool fullRange : {false, true}) {
    const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 3, 2, kSrgb);
    FillWithColor(from, 0.25F, 0.5F, 1.0F);
    const PX::VideoFrameRef to =
        MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C444, 8), 3, 2, YCbCr(0, fullRange));
    ASSERT_EQ(Copy(from, to), 0);
    EXPECT_EQ(Code(to, 0, 2, 1), fullRange ? 128U : 126U);  // 127.5 goes to the even code
    EXPECT_EQ(Code(to, 1, 2, 1), fullRange ? 255U : 235U);
    EXPECT_EQ(Code(to, 2, 2, 1), fullRange ? 64U : 71U);

    const PX::VideoFrameRef back = MakeFrame(RefHost::kBgraFloat, 3, 2, kSrgb);
    ASSERT_EQ(Copy(to, back), 0);
    EXPECT_NEAR(FloatPixel(back, 1, 1)[0], 1.0, 1e-6);
    EXPECT_NEAR(FloatPixel(back, 1, 1)[1], 0.5, 1.0 / 219.0);
    EXPECT_NEAR(FloatPixel(back, 1, 1)[2], 0.25, 1.0 / 219.0);
  }
}

TEST(YCbCrPatch, TakesNotANumberAsZeroAndBoundsInfinity) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 2, 2, kSrgb);
  for (const ChromaFormat chroma : {ChromaFormat::C420, ChromaFormat::C444}) {
    const PX::VideoFrameRef to = MakeFrame(RefHost::PlanarYCbCr(chroma, 8), 2, 2, YCbCr(1, false));
    FillWithColor(from, nan, nan, nan);
    ASSERT_EQ(Copy(from, to), 0);
    EXPECT_EQ(Code(to, 0, 0, 0), 16U);
    EXPECT_EQ(Code(to, 1, 0, 0), 128U);
    EXPECT_EQ(Code(to, 2, 0, 0), 128U);

    FillWithColor(from, infinity, 0.0F, -infinity);
    ASSERT_EQ(Copy(from, to), 0);
    EXPECT_EQ(Code(to, 0, 0, 0), 255U);
    EXPECT_EQ(Code(to, 1, 0, 0), 0U);
    EXPECT_EQ(Code(to, 2, 0, 0), 255U);
  }
}

TEST(YCbCrPatch, TakesCodesBeyondTheDepthAsTheLargest) {
  const PX::VideoFrameRef from =
      MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C444, 10), 1, 1, YCbCr(0, true));
  SetCode(from, 0, 0, 0, 65535);
  SetCode(from, 1, 0, 0, 1024);
  SetCode(from, 2, 0, 0, 0);
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 1, 1, kSrgb);
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_EQ(FloatPixel(to, 0, 0)[1], 1.0F);
  EXPECT_EQ(FloatPixel(to, 0, 0)[0], 1.0F);
  EXPECT_EQ(FloatPixel(to, 0, 0)[2], 0.0F);
}

TEST(YCbCrPatch, RefusesMatricesAndChromaLocationsThatAreNotKnown) {
  constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
  const PX::VideoFrameRef rgb = MakeFrame(RefHost::kBgraFloat, 4, 4, kSrgb);
  FillWithNoise(rgb, 1);
  const PixelFormat c420 = RefHost::PlanarYCbCr(ChromaFormat::C420, 8);
  for (const int matrix : {0, 2, 3, 10, 11, 13, 14, 15, 99}) {
    const PX::VideoFrameRef video = MakeFrame(c420, 4, 4, YCbCr(matrix, false));
    FillWithNoise(video, 2);
    EXPECT_EQ(Copy(rgb, video), kNotSupported) << matrix;
    EXPECT_EQ(Copy(video, rgb), kNotSupported) << matrix;
  }
  const PX::VideoFrameRef lost = MakeFrame(c420, 4, 4, YCbCr(1, false, 6));
  EXPECT_EQ(Copy(rgb, lost), kNotSupported);
  EXPECT_EQ(Copy(rgb, MakeFrame(c420, 4, 4, YCbCr(1, false, 5))), 0);
}

TEST(YCbCrPatch, DerivesAMatrixFromThePrimaries) {
  ColorDescription derived = YCbCr(12, false);
  derived.primaries = 9;
  ColorDescription rgb = Rgb(9, 13);
  const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 1, 1, rgb);
  FillWithColor(from, 0.9F, 0.1F, 0.35F);
  const PixelFormat c444 = RefHost::PlanarYCbCr(ChromaFormat::C444, 10);
  const PX::VideoFrameRef to = MakeFrame(c444, 1, 1, derived);
  ASSERT_EQ(Copy(from, to), 0);
  // BT.2020's own matrix has these weights, rounded.
  const auto exact = ExactCodes({0.9, 0.1, 0.35}, kMatrices[3], 10, false);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(Code(to, i, 0, 0), exact[static_cast<std::size_t>(i)], 0.6);
  }

  ColorDescription named = derived;
  named.matrix = 9;
  const PX::VideoFrameRef other = MakeFrame(c444, 1, 1, named);
  ASSERT_EQ(Copy(to, other), 0);
  EXPECT_LE(LargestCodeDifference(to, other), 1U);
}

TEST(YCbCrPatch, DerivesNoMatrixFromPrimariesThatAreNotKnown) {
  for (const int primaries : {2, 3, 23, 200}) {
    ColorDescription derived = YCbCr(12, false);
    derived.primaries = static_cast<std::uint8_t>(primaries);
    const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 1, 1, Rgb(primaries, 13));
    FillWithColor(from, 0.9F, 0.1F, 0.35F);
    const PX::VideoFrameRef to =
        MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C444, 10), 1, 1, derived);
    EXPECT_EQ(Copy(from, to), static_cast<int>(0xA00F000CU)) << primaries;
  }
}

TEST(YCbCrPatch, ConvertsColorsAndMatrixTogether) {
  // BT.2100 PQ grey of 203 nits is BT.1886 white where graphics white is 203 nits.
  ColorDescription pq = YCbCr(9, false);
  pq.primaries = 9;
  pq.transfer = 16;
  ColorDescription sdr = YCbCr(1, false);
  sdr.transfer = 1;
  for (const ChromaFormat chroma : {ChromaFormat::C420, ChromaFormat::C422, ChromaFormat::C444}) {
    const PX::VideoFrameRef from = MakeFrame(RefHost::SemiPlanarYCbCr(chroma, 10), 33, 77, pq);
    for (int component = 0; component < 3; ++component) {
      for (int y = 0; y < ComponentHeight(from, component); ++y) {
        for (int x = 0; x < ComponentWidth(from, component); ++x) {
          SetCode(from, component, x, y, component == 0 ? 573 : 512);
        }
      }
    }
    const PX::VideoFrameRef to = MakeFrame(RefHost::PlanarYCbCr(chroma, 8), 33, 77, sdr);
    ASSERT_EQ(Copy(from, to), 0);
    for (const int y : {0, 31, 32, 76}) {
      EXPECT_NEAR(Code(to, 0, 32, y), 235.0, 1.0) << y;
      EXPECT_EQ(Code(to, 1, 0, y / 2), 128U);
      EXPECT_EQ(Code(to, 2, 16, y / 2), 128U);
    }
  }
}

}  // namespace
