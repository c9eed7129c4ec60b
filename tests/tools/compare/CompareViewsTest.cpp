#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "refhost/orvmediatypes/H273.h"
#include "tests/tools/compare/TestFrames.h"
#include "tools/quillon/compare/CompareViews.h"
#include "tools/quillon/compare/FalseColors.h"
#include "tools/quillon/picture/PictureForEye.h"

using namespace Quillon::Cli;

namespace {

constexpr int kWidth = 20;
constexpr int kHeight = 6;
constexpr FalseColor kDivider = {255, 0, 255};

FalseColor At(const Bitmap& bitmap, int x, int y) {
  const auto* bgra = bitmap.bgra.data() + std::size_t{4} * (y * bitmap.width + x);
  return {bgra[2], bgra[1], bgra[0]};
}

PX::VideoFrameRef Flat(std::uint8_t primaries, std::uint8_t transfer, const Rgb& rgb) {
  return MakeTestFrame(kWidth, kHeight, primaries, transfer, [&](int, int) { return rgb; });
}

PX::VideoFrameRef FlatSrgb(float signal) {
  return Flat(RefHost::kPrimariesBT709, RefHost::kTransferSRGB, {signal, signal, signal});
}

Bitmap Draw(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b, ViewSettings settings) {
  settings.hdrPeakNits = CommonHdrPeak(a, b, 203);
  return DrawCompareView(a, b, ComparePictures(a, b, {}), {}, settings);
}

TEST(DrawCompareView, PutsABesideBWithADividerBetween) {
  const Bitmap view = Draw(FlatSrgb(0.2F), FlatSrgb(0.8F), {});
  EXPECT_EQ(view.width, 2 * kWidth + 1);
  EXPECT_EQ(view.height, kHeight);
  EXPECT_EQ(At(view, 0, 0), (FalseColor{51, 51, 51}));
  EXPECT_EQ(At(view, kWidth - 1, kHeight - 1), (FalseColor{51, 51, 51}));
  EXPECT_EQ(At(view, kWidth, 3), kDivider);
  EXPECT_EQ(At(view, kWidth + 1, 0), (FalseColor{204, 204, 204}));
  EXPECT_EQ(At(view, 2 * kWidth, kHeight - 1), (FalseColor{204, 204, 204}));
}

TEST(DrawCompareView, SplitsAtTheShareThatIsAskedFor) {
  const auto a = FlatSrgb(0.2F);
  const auto b = FlatSrgb(0.8F);
  for (const double share : {0.1, 0.5, 0.9}) {
    const Bitmap view = Draw(a, b, {CompareView::Split, share, {}});
    ASSERT_EQ(view.width, kWidth);
    const int split = static_cast<int>(std::lround(share * kWidth));
    EXPECT_EQ(At(view, split - 1, 2), (FalseColor{51, 51, 51})) << share;
    EXPECT_EQ(At(view, split, 2), kDivider) << share;
    EXPECT_EQ(At(view, split + 1, 2), (FalseColor{204, 204, 204})) << share;
  }
}

TEST(DrawCompareView, SplitsWithoutADividerWhereOnePictureHasItAll) {
  const Bitmap all = Draw(FlatSrgb(0.2F), FlatSrgb(0.8F), {CompareView::Split, 1.0, {}});
  const Bitmap none = Draw(FlatSrgb(0.2F), FlatSrgb(0.8F), {CompareView::Split, 0.0, {}});
  for (int x = 0; x < kWidth; ++x) {
    EXPECT_EQ(At(all, x, 0), (FalseColor{51, 51, 51}));
    EXPECT_EQ(At(none, x, 0), (FalseColor{204, 204, 204}));
  }
}

TEST(DrawCompareView, PaintsTheDifferenceOfEachPixelAboveALegend) {
  const auto a = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferPQ, {0.5F, 0.5F, 0.5F});
  const auto b = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferPQ, {0.5F, 0.5F, 0.5F});
  const float unit = 1.0F / 720.0F;  // a delta-E of 1 between greys
  const auto grey = [&](float deltaE) {
    const float signal = 0.5F + deltaE * unit;
    return Rgb{signal, signal, signal};
  };
  SetTestPixel(b, 3, 1, grey(3.0F));
  SetTestPixel(b, 4, 2, grey(99.0F));
  SetTestPixel(b, 5, 3, {std::numeric_limits<float>::quiet_NaN(), 0.5F, 0.5F});
  const Bitmap view = Draw(a, b, {CompareView::DeltaE, 0.5, {}});
  EXPECT_EQ(At(view, 0, 0), kDeltaEBands[0].color);
  EXPECT_EQ(At(view, 3, 1), kDeltaEBands[2].color);
  EXPECT_EQ(At(view, 4, 2), kDeltaEBands[6].color);
  EXPECT_EQ(At(view, 5, 3), kNotFiniteColor);

  ASSERT_GT(view.height, kHeight + 20);
  for (const DeltaEBand& band : kDeltaEBands) {
    bool found = false;
    for (int y = kHeight; y < view.height; ++y) {
      for (int x = 0; x < view.width; ++x) found = found || At(view, x, y) == band.color;
    }
    EXPECT_TRUE(found) << band.label;
  }
}

TEST(DrawCompareView, MarksWhatIsClippedOrOutOfGamutOverGrey) {
  const auto a = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferSRGB, {0.2F, 0.6F, 0.4F});
  SetTestPixel(a, 1, 0, {1.0F, 0.5F, 0.5F});
  SetTestPixel(a, 2, 0, {0.5F, -0.5F, 0.5F});
  SetTestPixel(a, 3, 0, {1.0F, -0.5F, 0.5F});
  const auto b = FlatSrgb(0.5F);
  SetTestPixel(b, 4, 5, {0.5F, 0.5F, 1.0F});
  const Bitmap view = Draw(a, b, {CompareView::Clip, 0.5, {}});
  const FalseColor grey = At(view, 0, 0);
  EXPECT_EQ(grey[0], grey[1]);
  EXPECT_EQ(grey[1], grey[2]);
  EXPECT_GT(grey[0], 20);
  EXPECT_EQ(At(view, 1, 0), kClippedColor);
  EXPECT_EQ(At(view, 2, 0), kOutOfGamutColor);
  EXPECT_EQ(At(view, 3, 0), kBothColor);
  EXPECT_EQ(At(view, kWidth, 0), kDivider);
  EXPECT_EQ(At(view, kWidth + 1 + 4, 5), kClippedColor);
  EXPECT_EQ(At(view, kWidth + 1, 0), (FalseColor{90, 90, 90}));  // 0.7 of 128
}

TEST(DrawCompareView, ShowsPixelsThatAreTheSameAlikeThoughOnePictureHasAHigherPeak) {
  const auto ramp = [](int x, int) {
    const float signal = 0.3F + 0.02F * static_cast<float>(x);
    return Rgb{signal, signal, signal};
  };
  for (const auto transfer :
       {RefHost::kTransferPQ, RefHost::kTransferHLG, RefHost::kTransferLinear}) {
    const auto frame = [&] {
      return MakeTestFrame(kWidth, kHeight, RefHost::kPrimariesBT2020, transfer, ramp);
    };
    const auto bright = frame();
    SetTestPixel(bright, 0, 0, {5.0F / 6.0F, 5.0F / 6.0F, 5.0F / 6.0F});
    if (transfer == RefHost::kTransferLinear) SetTestPixel(bright, 0, 0, {9.0F, 9.0F, 9.0F});
    const Bitmap view = Draw(frame(), bright, {});
    EXPECT_NE(At(view, 0, 0), At(view, kWidth + 1, 0));
    for (int x = 0; x < kWidth; ++x) {
      EXPECT_EQ(At(view, x, 1), At(view, kWidth + 1 + x, 1)) << x << ", " << int{transfer};
    }
  }
}

TEST(DrawCompareView, DrawsBlackAndWhatIsNotFinite) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto black = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferPQ, {0.0F, 0.0F, 0.0F});
  const auto none = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferLinear, {nan, nan, nan});
  const Bitmap view = Draw(black, none, {});
  EXPECT_EQ(At(view, 0, 0), (FalseColor{0, 0, 0}));
  EXPECT_EQ(view.width, 2 * kWidth + 1);
  EXPECT_EQ(At(Draw(black, none, {CompareView::Clip, 0.5, {}}), kWidth + 1, 0), kNotFiniteColor);
}

TEST(CommonHdrPeak, IsTheLargerOfTheHdrPicturesAlone) {
  const auto pq = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferPQ, {0.5F, 0.2F, 0.2F});
  const auto linear = Flat(RefHost::kPrimariesBT2020, RefHost::kTransferLinear, {0.1F, 2.0F, 0.1F});
  const auto sdr = FlatSrgb(1.0F);
  EXPECT_NEAR(CommonHdrPeak(pq, linear, 203).value(), 406.0, 1e-3);
  EXPECT_NEAR(CommonHdrPeak(pq, sdr, 203).value(), 92.246, 0.01);
  EXPECT_FALSE(CommonHdrPeak(sdr, sdr, 203).has_value());
}

}  // namespace
