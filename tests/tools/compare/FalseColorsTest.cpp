#include <cmath>
#include <limits>
#include <set>

#include <gtest/gtest.h>

#include "tools/quillon/compare/FalseColors.h"
#include "tools/quillon/compare/PixelMarks.h"

using namespace Quillon::Cli;

namespace {

double Luminance(const FalseColor& color) {
  const auto linear = [](std::uint8_t byte) {
    const double signal = byte / 255.0;
    return signal <= 0.04045 ? signal / 12.92 : std::pow((signal + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color[0]) + 0.7152 * linear(color[1]) + 0.0722 * linear(color[2]);
}

TEST(DeltaEColor, IsBrighterTheLargerTheDifference) {
  double last = -10.0;
  for (const DeltaEBand& band : kDeltaEBands) {
    // CIE L*, in which equal steps look equal.
    const double lightness = 116.0 * std::cbrt(Luminance(band.color)) - 16.0;
    EXPECT_GT(lightness, last + 10.0) << band.label;
    last = lightness;
  }
}

TEST(DeltaEColor, ChangesAtEachThreshold) {
  for (std::size_t i = 1; i < kDeltaEBands.size(); ++i) {
    const float threshold = kDeltaEBands[i].from;
    EXPECT_EQ(DeltaEColor(threshold), kDeltaEBands[i].color);
    EXPECT_EQ(DeltaEColor(std::nextafter(threshold, 0.0F)), kDeltaEBands[i - 1].color);
  }
  EXPECT_EQ(DeltaEColor(0.0F), kDeltaEBands.front().color);
  EXPECT_EQ(DeltaEColor(700.0F), kDeltaEBands.back().color);
  EXPECT_EQ(DeltaEColor(std::numeric_limits<float>::quiet_NaN()), kNotFiniteColor);
}

TEST(MarkColor, TellsEachMarkFromTheOthers) {
  const FalseColor grey = {80, 80, 80};
  EXPECT_EQ(MarkColor(0, grey), grey);
  EXPECT_EQ(MarkColor(kClipped, grey), kClippedColor);
  EXPECT_EQ(MarkColor(kOutOfGamut, grey), kOutOfGamutColor);
  EXPECT_EQ(MarkColor(kClipped | kOutOfGamut, grey), kBothColor);
  EXPECT_EQ(MarkColor(kNotFinite, grey), kNotFiniteColor);
  EXPECT_EQ(
      (std::set<FalseColor>{kClippedColor, kOutOfGamutColor, kBothColor, kNotFiniteColor}).size(),
      4U);
}

}  // namespace
