#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "refhost/orvmediatypes/H273.h"
#include "tests/tools/compare/TestFrames.h"
#include "tools/quillon/compare/Compare.h"
#include "tools/quillon/picture/DeltaEItp.h"
#include "tools/quillon/process/ExitCodes.h"

using namespace Quillon::Cli;

namespace {

constexpr int kWidth = 40;
constexpr int kHeight = 25;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

Rgb Ramp(int x, int y) {
  return {static_cast<float>(x + 1) / 64.0F, static_cast<float>(y + 1) / 40.0F, 0.25F};
}

PX::VideoFrameRef LinearRamp() {
  return MakeTestFrame(kWidth, kHeight, RefHost::kPrimariesBT2020, RefHost::kTransferLinear, Ramp);
}

PX::VideoFrameRef PQRamp() {
  return MakeTestFrame(kWidth, kHeight, RefHost::kPrimariesBT2020, RefHost::kTransferPQ, Ramp);
}

PX::VideoFrameRef SrgbRamp() {
  return MakeTestFrame(kWidth, kHeight, RefHost::kPrimariesBT709, RefHost::kTransferSRGB, Ramp);
}

TEST(ComparePictures, FindsNoDifferenceBetweenAPictureAndItself) {
  for (const auto& frame : {LinearRamp(), PQRamp(), SrgbRamp()}) {
    const Comparison comparison = ComparePictures(frame, frame, {});
    EXPECT_EQ(comparison.comparedPixels, kWidth * kHeight);
    ASSERT_TRUE(comparison.deltaEFigures.has_value());
    EXPECT_EQ(comparison.deltaEFigures->mean, 0.0);
    EXPECT_EQ(comparison.deltaEFigures->max, 0.0);
    ASSERT_TRUE(comparison.pqError.has_value());
    EXPECT_EQ(comparison.pqError->meanSquared, 0.0);
    EXPECT_EQ(comparison.pqError->PsnrDb(), std::nullopt);
  }
}

TEST(ComparePictures, FindsTheOnePixelThatWasChanged) {
  const PX::VideoFrameRef changed = LinearRamp();
  const Rgb before = Ramp(17, 11);
  const Rgb after = {before[0] * 2.0F, before[1], before[2]};
  SetTestPixel(changed, 17, 11, after);
  const Comparison comparison = ComparePictures(LinearRamp(), changed, {.white = 100});

  const auto nits = [](const Rgb& rgb) {
    return ICtCpOfNits(100.0 * rgb[0], 100.0 * rgb[1], 100.0 * rgb[2]);
  };
  const double expected = DeltaEItp(nits(before), nits(after));
  ASSERT_GT(expected, 1.0);
  const DeltaEFigures& figures = comparison.deltaEFigures.value();
  EXPECT_EQ(figures.maxX, 17);
  EXPECT_EQ(figures.maxY, 11);
  EXPECT_FLOAT_EQ(figures.max, expected);
  EXPECT_NEAR(figures.mean, expected / (kWidth * kHeight), 1e-6);
  EXPECT_EQ(figures.percentile99, 0.0);
  EXPECT_FLOAT_EQ(comparison.deltaE[11 * kWidth + 17], expected);

  const double step = EncodeSt2084(100.0 * after[0]) - EncodeSt2084(100.0 * before[0]);
  const double meanSquared = step * step / (3.0 * kWidth * kHeight);
  EXPECT_NEAR(comparison.pqError->PsnrDb().value(), -10.0 * std::log10(meanSquared), 1e-6);
}

TEST(ComparePictures, RanksDeltaEByWhatSoManyPercentDoNotExceed) {
  // A hundred greys, each a step of PQ brighter than in the other picture than the one before.
  const auto black = [](int, int) { return Rgb{0.0F, 0.0F, 0.0F}; };
  const auto steps = [](int x, int y) {
    const float signal = static_cast<float>(x + 10 * y + 1) / 128.0F;
    return Rgb{signal, signal, signal};
  };
  const auto pq = [](const auto& pixel) {
    return MakeTestFrame(10, 10, RefHost::kPrimariesBT2020, RefHost::kTransferPQ, pixel);
  };
  const DeltaEFigures figures = ComparePictures(pq(black), pq(steps), {}).deltaEFigures.value();
  const double step = 720.0 / 128.0;
  EXPECT_NEAR(figures.median, 50.0 * step, 1e-3);
  EXPECT_NEAR(figures.percentile95, 95.0 * step, 1e-3);
  EXPECT_NEAR(figures.percentile99, 99.0 * step, 1e-3);
  EXPECT_NEAR(figures.max, 100.0 * step, 1e-3);
  EXPECT_NEAR(figures.mean, 50.5 * step, 1e-3);
  EXPECT_EQ(figures.maxX, 9);
  EXPECT_EQ(figures.maxY, 9);
}

TEST(ComparePictures, GivesTheSameFiguresWithThePicturesSwapped) {
  const Comparison one = ComparePictures(PQRamp(), SrgbRamp(), {});
  const Comparison other = ComparePictures(SrgbRamp(), PQRamp(), {});
  EXPECT_GT(one.deltaEFigures->mean, 1.0);
  EXPECT_EQ(one.deltaEFigures->mean, other.deltaEFigures->mean);
  EXPECT_EQ(one.deltaEFigures->percentile95, other.deltaEFigures->percentile95);
  EXPECT_EQ(one.pqError->meanSquared, other.pqError->meanSquared);
}

TEST(ComparePictures, TakesOneColourForTheSameInTwoContainers) {
  const auto grey = [](int x, int) {
    const float light = static_cast<float>(x) / kWidth;
    return Rgb{light, light, light};
  };
  const PX::VideoFrameRef bt709 =
      MakeTestFrame(kWidth, 2, RefHost::kPrimariesBT709, RefHost::kTransferLinear, grey);
  const PX::VideoFrameRef bt2020 =
      MakeTestFrame(kWidth, 2, RefHost::kPrimariesBT2020, RefHost::kTransferLinear, grey);
  EXPECT_LT(ComparePictures(bt709, bt2020, {}).deltaEFigures->max, 1e-3);
}

TEST(ComparePictures, ComparesSignalsOnlyInOneColourSpaceWithFullScale) {
  const PX::VideoFrameRef changed = PQRamp();
  SetTestPixel(changed, 3, 4, {0.5F, 0.5F, 0.5F});
  const Comparison comparison = ComparePictures(PQRamp(), changed, {});
  const Rgb before = Ramp(3, 4);
  double squares = 0.0;
  for (const float component : before) squares += (0.5 - component) * (0.5 - component);
  ASSERT_TRUE(comparison.ownError.has_value());
  EXPECT_NEAR(comparison.ownError->meanSquared, squares / (3.0 * kWidth * kHeight), 1e-12);

  EXPECT_FALSE(ComparePictures(PQRamp(), SrgbRamp(), {}).ownError.has_value());
  EXPECT_FALSE(ComparePictures(LinearRamp(), LinearRamp(), {}).ownError.has_value());
}

TEST(ComparePictures, LeavesOutPixelsThatAreNotFiniteAndCountsThem) {
  const PX::VideoFrameRef a = LinearRamp();
  const PX::VideoFrameRef b = LinearRamp();
  SetTestPixel(a, 1, 2, {kNan, 0.0F, 0.0F});
  SetTestPixel(b, 1, 2, {0.0F, kInfinity, 0.0F});
  SetTestPixel(b, 5, 6, {0.0F, 0.0F, -kInfinity});
  const Comparison comparison = ComparePictures(a, b, {});
  EXPECT_EQ(comparison.marksA.Count(kNotFinite), 1);
  EXPECT_EQ(comparison.marksB.Count(kNotFinite), 2);
  EXPECT_EQ(comparison.comparedPixels, kWidth * kHeight - 2);
  EXPECT_EQ(comparison.deltaEFigures->max, 0.0);
  EXPECT_TRUE(std::isnan(comparison.deltaE[2 * kWidth + 1]));
  EXPECT_TRUE(std::isnan(comparison.deltaE[6 * kWidth + 5]));
}

TEST(ComparePictures, HasNoFiguresWhereNoPixelIsFinite) {
  const PX::VideoFrameRef none =
      MakeTestFrame(3, 2, RefHost::kPrimariesBT2020, RefHost::kTransferLinear, [](int, int) {
        return Rgb{kNan, kNan, kNan};
      });
  const Comparison comparison = ComparePictures(none, none, {});
  EXPECT_EQ(comparison.comparedPixels, 0);
  EXPECT_FALSE(comparison.deltaEFigures.has_value());
  EXPECT_FALSE(comparison.pqError.has_value());
  EXPECT_EQ(comparison.marksA.Count(kNotFinite), 6);
}

TEST(ComparePictures, CountsClippingAtFullScaleOfTheSignalAndNotAtBlack) {
  const auto pixels = [](int x, int) {
    constexpr float kJustBelow = 65534.0F / 65535.0F;
    const Rgb row[] = {{0.0F, 0.0F, 0.0F},
                       {1.0F, 0.2F, 0.2F},
                       {0.2F, 1.5F, 0.2F},
                       {kJustBelow, kJustBelow, kJustBelow}};
    return row[x];
  };
  for (const auto transfer :
       {RefHost::kTransferPQ, RefHost::kTransferHLG, RefHost::kTransferSRGB}) {
    const PX::VideoFrameRef frame =
        MakeTestFrame(4, 1, RefHost::kPrimariesBT2020, transfer, pixels);
    const PixelMarks marks = ComparePictures(frame, frame, {}).marksA;
    EXPECT_TRUE(marks.hasFullScale);
    EXPECT_EQ(marks.Count(kClipped), 2) << int{transfer};
  }
  const PX::VideoFrameRef linear =
      MakeTestFrame(4, 1, RefHost::kPrimariesBT2020, RefHost::kTransferLinear, pixels);
  const PixelMarks marks = ComparePictures(linear, linear, {}).marksA;
  EXPECT_FALSE(marks.hasFullScale);
  EXPECT_EQ(marks.Count(kClipped), 0);
}

TEST(ComparePictures, CountsColoursOutOfTheGamutThatIsAskedFor) {
  // Pure BT.2020 red, a BT.2020 colour that is grey, and light below 0 in BT.2020 itself.
  const PX::VideoFrameRef frame =
      MakeTestFrame(3, 1, RefHost::kPrimariesBT2020, RefHost::kTransferLinear, [](int x, int) {
        const Rgb row[] = {{1.0F, 0.0F, 0.0F}, {0.5F, 0.5F, 0.5F}, {1.0F, -0.25F, 1.0F}};
        return row[x];
      });
  const auto outOf = [&](std::uint8_t primaries) {
    return ComparePictures(frame, frame, {.gamutPrimaries = primaries}).marksA.Count(kOutOfGamut);
  };
  EXPECT_EQ(outOf(RefHost::kPrimariesBT709), 2);
  EXPECT_EQ(outOf(RefHost::kPrimariesP3D65), 2);
  EXPECT_EQ(outOf(RefHost::kPrimariesBT2020), 1);
}

TEST(ComparePictures, RefusesPicturesOfDifferentSizesAndSaysBoth) {
  const PX::VideoFrameRef small = MakeTestFrame(3, 2, 9, 8, Ramp);
  try {
    ComparePictures(LinearRamp(), small, {});
    FAIL() << "compared";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.Code(), ExitCode::NotSupported);
    EXPECT_NE(std::string(error.what()).find("A is 40x25 and B is 3x2"), std::string::npos);
  }
}

}  // namespace
