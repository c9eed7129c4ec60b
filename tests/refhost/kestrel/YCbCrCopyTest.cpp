#include <algorithm>
#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "tests/refhost/kestrel/Frames.h"

using RefHost::ChromaFormat;

std::vector<std::vector<NamedFormat>> ConvertedFormats() {
  return {InterleavedFormats(), YCbCrFormats()};
}

namespace {

constexpr std::array kChromaFormats{ChromaFormat::C420, ChromaFormat::C422, ChromaFormat::C444};

struct Size {
  int width;
  int height;
};
constexpr std::array<Size, 6> kSizes{{{1, 1}, {1, 2}, {2, 1}, {3, 5}, {17, 9}, {31, 67}}};

PX::VideoFrameRef Noise(PixelFormat format, int width, int height, const ColorDescription& colors) {
  PX::VideoFrameRef frame = MakeFrame(format, width, height, colors);
  FillWithNoise(frame, 11);
  return frame;
}

TEST(YCbCrCopy, KeepsCodesOnTheWayThroughFloatWhereNoChromaIsHalved) {
  for (const int bits : {8, 10, 12, 16}) {
    for (const bool fullRange : {false, true}) {
      const PixelFormat format = RefHost::PlanarYCbCr(ChromaFormat::C444, bits);
      const PX::VideoFrameRef from = Noise(format, 31, 67, YCbCr(9, fullRange));
      const PX::VideoFrameRef between = MakeFrame(RefHost::kBgraFloat, 31, 67, kSrgb);
      const PX::VideoFrameRef to = MakeFrame(format, 31, 67, YCbCr(9, fullRange));
      ASSERT_EQ(Copy(from, between), 0);
      ASSERT_EQ(Copy(between, to), 0);
      EXPECT_EQ(LargestCodeDifference(from, to), 0U) << bits;
    }
  }
}

TEST(YCbCrCopy, BringsSmoothPicturesThroughEveryFormat) {
  const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 64, 64, kSrgb);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const std::array<float, 4> pixel{static_cast<float>(x) / 64.0F, 0.3F,
                                       static_cast<float>(y) / 64.0F, 1.0F};
      std::copy(pixel.begin(), pixel.end(), FloatPixel(from, x, y));
    }
  }
  for (const auto& [name, format] : YCbCrFormats()) {
    const PX::VideoFrameRef video = MakeFrame(format, 64, 64, YCbCr(1, false));
    const PX::VideoFrameRef back = MakeFrame(RefHost::kBgraFloat, 64, 64, kSrgb);
    ASSERT_EQ(Copy(from, video), 0);
    ASSERT_EQ(Copy(video, back), 0);
    const float step = 1.0F / (219.0F * static_cast<float>(1 << (InfoOf(format).bits - 8)));
    // Away from the edges a ramp survives halved chroma.
    for (int y = 4; y < 60; ++y) {
      for (int x = 4; x < 60; ++x) {
        for (int i = 0; i < 3; ++i) {
          ASSERT_NEAR(FloatPixel(back, x, y)[i], FloatPixel(from, x, y)[i], 2.0F * step)
              << name << " " << x << " " << y;
        }
      }
    }
  }
}

TEST(YCbCrCopy, MakesTheSameOfPlanarAndSemiPlanarFrames) {
  for (const ChromaFormat chroma : kChromaFormats) {
    for (const int bits : {8, 10, 12, 16}) {
      for (const auto& [width, height] : kSizes) {
        const PX::VideoFrameRef planar =
            Noise(RefHost::PlanarYCbCr(chroma, bits), width, height, YCbCr(6, false));
        const PX::VideoFrameRef semiPlanar =
            MakeFrame(RefHost::SemiPlanarYCbCr(chroma, bits), width, height, YCbCr(6, false));
        ASSERT_EQ(Copy(planar, semiPlanar), 0);
        EXPECT_EQ(LargestCodeDifference(planar, semiPlanar), 0U) << bits << " " << width;
        const PX::VideoFrameRef back =
            MakeFrame(RefHost::PlanarYCbCr(chroma, bits), width, height, YCbCr(6, false));
        ASSERT_EQ(Copy(semiPlanar, back), 0);
        EXPECT_EQ(Samples(back), Samples(planar)) << bits << " " << width;
      }
    }
  }
}

TEST(YCbCrCopy, PutsTheCodesOfSemiPlanarFramesIntoTheHighBits) {
  const PX::VideoFrameRef from =
      Noise(RefHost::PlanarYCbCr(ChromaFormat::C420, 10), 2, 2, YCbCr(6, false));
  SetCode(from, 0, 0, 0, 0x2A5);
  SetCode(from, 2, 0, 0, 0x3FF);
  const PX::VideoFrameRef to =
      MakeFrame(RefHost::SemiPlanarYCbCr(ChromaFormat::C420, 10), 2, 2, YCbCr(6, false));
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_EQ(reinterpret_cast<const std::uint16_t*>(RowOf(to, 0, 0))[0], 0x2A5 << 6);
  EXPECT_EQ(reinterpret_cast<const std::uint16_t*>(RowOf(to, 1, 0))[1], 0x3FF << 6);
}

TEST(YCbCrCopy, WidensLimitedRangeByAShift) {
  const PX::VideoFrameRef from =
      Noise(RefHost::PlanarYCbCr(ChromaFormat::C420, 8), 17, 67, YCbCr(1, false));
  const PX::VideoFrameRef to =
      MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C420, 10), 17, 67, YCbCr(1, false));
  ASSERT_EQ(Copy(from, to), 0);
  for (int i = 0; i < 3; ++i) {
    std::vector<unsigned> expected = Codes(from, i);
    for (unsigned& code : expected) code *= 4;
    EXPECT_EQ(Codes(to, i), expected) << i;
  }
}

TEST(YCbCrCopy, ConvertsTheRangeWithinAFormat) {
  const PixelFormat format = RefHost::PlanarYCbCr(ChromaFormat::C444, 8);
  const PX::VideoFrameRef limited = MakeFrame(format, 3, 1, YCbCr(1, false));
  const PX::VideoFrameRef full = MakeFrame(format, 3, 1, YCbCr(1, true));
  const std::array<unsigned, 3> limitedCodes{16, 126, 235};
  for (int x = 0; x < 3; ++x) {
    SetCode(limited, 0, x, 0, limitedCodes[static_cast<std::size_t>(x)]);
    SetCode(limited, 1, x, 0, 128);
    SetCode(limited, 2, x, 0, 240);
  }
  ASSERT_EQ(Copy(limited, full), 0);
  EXPECT_EQ(Codes(full, 0), (std::vector<unsigned>{0, 128, 255}));
  EXPECT_EQ(Codes(full, 1), (std::vector<unsigned>{128, 128, 128}));
  EXPECT_EQ(Codes(full, 2), (std::vector<unsigned>{255, 255, 255}));
}

TEST(YCbCrCopy, MovesChromaToItsLocationWithinAFormat) {
  const PixelFormat format = RefHost::PlanarYCbCr(ChromaFormat::C420, 8);
  const PX::VideoFrameRef left = MakeFrame(format, 8, 2, YCbCr(1, false, 0));
  const PX::VideoFrameRef center = MakeFrame(format, 8, 2, YCbCr(1, false, 1));
  FillWithNoise(left, 12);
  for (int x = 0; x < 4; ++x) SetCode(left, 1, x, 0, 100U + 20U * static_cast<unsigned>(x));
  ASSERT_EQ(Copy(left, center), 0);
  // Half a luma sample to the right is a quarter of the way to the next chroma sample.
  EXPECT_EQ(Codes(center, 1), (std::vector<unsigned>{105, 125, 145, 160}));
  EXPECT_EQ(Codes(center, 0), Codes(left, 0));
}

TEST(YCbCrCopy, TakesCodePointsOfOneCurveAsTheSameColors) {
  ColorDescription bt709 = YCbCr(1, false);
  bt709.transfer = 1;
  ColorDescription bt2020 = bt709;
  bt2020.transfer = 14;
  const PX::VideoFrameRef from = Noise(RefHost::PlanarYCbCr(ChromaFormat::C420, 8), 17, 67, bt709);
  const PX::VideoFrameRef to =
      MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C420, 8), 17, 67, bt2020);
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_EQ(LargestCodeDifference(from, to), 0U);
}

TEST(YCbCrCopy, DoesNotSendCodesThroughATransferFunctionWhenColorsAreTheSame) {
  // PQ signals below 0 and above 1, which these codes make, do not come back from light.
  ColorDescription pq = YCbCr(9, false);
  pq.primaries = 9;
  pq.transfer = 16;
  const PX::VideoFrameRef from = Noise(RefHost::PlanarYCbCr(ChromaFormat::C444, 8), 16, 16, pq);
  const PX::VideoFrameRef to =
      MakeFrame(RefHost::SemiPlanarYCbCr(ChromaFormat::C444, 16), 16, 16, pq);
  ASSERT_EQ(Copy(from, to), 0);
  std::vector<unsigned> expected = Codes(from, 0);
  for (unsigned& code : expected) code *= 256;
  EXPECT_EQ(Codes(to, 0), expected);
}

TEST(YCbCrCopy, RepeatsTheEdgeWhereChromaReachesBeyondThePicture) {
  for (const ChromaFormat chroma : kChromaFormats) {
    for (int location = 0; location <= 5; ++location) {
      // An odd picture is the even one whose last row and column are repeated.
      const PX::VideoFrameRef odd = Noise(RefHost::kBgraFloat, 17, 35, kSrgb);
      const PX::VideoFrameRef even = MakeFrame(RefHost::kBgraFloat, 18, 36, kSrgb);
      for (int y = 0; y < 36; ++y) {
        for (int x = 0; x < 18; ++x) {
          std::copy_n(FloatPixel(odd, std::min(x, 16), std::min(y, 34)), 4, FloatPixel(even, x, y));
        }
      }
      const PixelFormat format = RefHost::PlanarYCbCr(chroma, 8);
      const PX::VideoFrameRef oddVideo = MakeFrame(format, 17, 35, YCbCr(1, false, location));
      const PX::VideoFrameRef evenVideo = MakeFrame(format, 18, 36, YCbCr(1, false, location));
      ASSERT_EQ(Copy(odd, oddVideo), 0);
      ASSERT_EQ(Copy(even, evenVideo), 0);
      for (int i = 0; i < 3; ++i) {
        for (int y = 0; y < ComponentHeight(oddVideo, i); ++y) {
          for (int x = 0; x < ComponentWidth(oddVideo, i); ++x) {
            ASSERT_EQ(Code(oddVideo, i, x, y), Code(evenVideo, i, x, y)) << location << " " << i;
          }
        }
      }
    }
  }
}

TEST(YCbCrCopy, TakesEverySizeBetweenAllFormats) {
  for (const auto& [width, height] : kSizes) {
    const PX::VideoFrameRef grey = MakeFrame(RefHost::kBgraFloat, width, height, kSrgb);
    FillWithColor(grey, 0.5F, 0.5F, 0.5F);
    for (const auto& [fromName, from] : YCbCrFormats()) {
      for (const auto& [toName, to] : YCbCrFormats()) {
        const PX::VideoFrameRef first = MakeFrame(from, width, height, YCbCr(1, false));
        const PX::VideoFrameRef second = MakeFrame(to, width, height, YCbCr(9, true));
        const PX::VideoFrameRef back = MakeFrame(RefHost::kBgraFloat, width, height, kSrgb);
        ASSERT_EQ(Copy(grey, first), 0) << fromName;
        ASSERT_EQ(Copy(first, second), 0) << fromName << " to " << toName;
        ASSERT_EQ(Copy(second, back), 0) << toName;
        for (const int x : {0, width - 1}) {
          for (int i = 0; i < 3; ++i) {
            ASSERT_NEAR(FloatPixel(back, x, height - 1)[i], 0.5, 0.006)
                << fromName << " to " << toName << " " << width << "x" << height;
          }
        }
      }
    }
  }
}

/// Colours converted between YCbCr frames at once, and by way of a float frame.
TEST(YCbCrCopy, ConvertsColorsAsTwoCopiesByWayOfFloatDo) {
  ColorDescription hlg = YCbCr(9, false);
  hlg.primaries = 9;
  hlg.transfer = 18;
  ColorDescription sdr = YCbCr(1, false);
  sdr.transfer = 1;
  for (const ChromaFormat fromChroma : kChromaFormats) {
    for (const ChromaFormat toChroma : kChromaFormats) {
      const PX::VideoFrameRef picture = MakeFrame(RefHost::kBgraFloat, 45, 139, Rgb(9, 18));
      FillWithGradient(picture);
      const PX::VideoFrameRef from = MakeFrame(RefHost::PlanarYCbCr(fromChroma, 10), 45, 139, hlg);
      const PX::VideoFrameRef between = MakeFrame(RefHost::kBgraFloat, 45, 139, Rgb(1, 1));
      const PX::VideoFrameRef expected =
          MakeFrame(RefHost::PlanarYCbCr(toChroma, 10), 45, 139, sdr);
      const PX::VideoFrameRef to = MakeFrame(RefHost::PlanarYCbCr(toChroma, 10), 45, 139, sdr);
      ASSERT_EQ(Copy(picture, from), 0);
      ASSERT_EQ(Copy(from, between), 0);
      ASSERT_EQ(Copy(between, expected), 0);
      ASSERT_EQ(Copy(from, to), 0);
      EXPECT_EQ(LargestCodeDifference(expected, to), 0U);
    }
  }
}

}  // namespace
