#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "mapper/GamutFit.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using Quillon::BestInstructionSet;
using Quillon::CanRun;
using Quillon::InstructionSet;
using Quillon::Mapper::FitPixels;
using Quillon::Mapper::GamutFit;
using Quillon::Mapper::MakeGamutFit;
using Quillon::Mapper::ReachesBeyond;

namespace {

constexpr int kWhite = 203;

ColorSpace Of(std::uint8_t primaries) {
  ColorDescription description;
  description.primaries = primaries;
  description.transfer = RefHost::kTransferLinear;
  return ColorSpace(description);
}

std::shared_ptr<const GamutFit> FitIntoBt709(double peakNits = kWhite) {
  return MakeGamutFit(Of(RefHost::kPrimariesBT709), peakNits, kWhite);
}

using Pixels = std::vector<float>;

Pixels Fitted(const GamutFit& fit, Pixels pixels, InstructionSet set = BestInstructionSet()) {
  FitPixels(set, fit, pixels.data(), pixels.size() / 4);
  return pixels;
}

/// Colours of all kinds, some far out of BT.709, blue, green, red and alpha.
Pixels ManyColors(std::size_t count) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> any(-0.3F, 1.0F);
  std::uniform_real_distribution<float> power(0.0F, 3.0F);
  Pixels pixels;
  for (std::size_t i = 0; i < count; ++i) {
    const float brightness = std::pow(10.0F, -power(random));
    for (int c = 0; c < 3; ++c) pixels.push_back(brightness * any(random));
    pixels.push_back(0.5F);
  }
  return pixels;
}

/// In double precision, apart from the fit's own arithmetic, with BT.709 as it is published
/// (BT.2087, M2, to BT.2020).
struct Itp {
  explicit Itp(const float* bgr) {
    const double b = bgr[0];
    const double g = bgr[1];
    const double r = bgr[2];
    const double red = 0.6274 * r + 0.3293 * g + 0.0433 * b;
    const double green = 0.0691 * r + 0.9195 * g + 0.0114 * b;
    const double blue = 0.0164 * r + 0.0880 * g + 0.8956 * b;
    const double l = EncodeSt2084((1688 * red + 2146 * green + 262 * blue) / 4096 * kWhite);
    const double m = EncodeSt2084((683 * red + 2951 * green + 462 * blue) / 4096 * kWhite);
    const double s = EncodeSt2084((99 * red + 309 * green + 3688 * blue) / 4096 * kWhite);
    i = 0.5 * l + 0.5 * m;
    t = 0.5 * (6610 * l - 13613 * m + 7003 * s) / 4096;
    p = (17933 * l - 17390 * m - 543 * s) / 4096;
  }
  double Chroma() const { return std::hypot(t, p); }
  double HueInDegrees() const { return std::atan2(p, t) * 180.0 / std::numbers::pi; }
  double i;
  double t;
  double p;
};

double AngleBetween(double a, double b) {
  const double difference = std::abs(a - b);
  return std::min(difference, 360.0 - difference);
}

bool IsWithin(const float* bgr) {
  return std::all_of(bgr, bgr + 3, [](float light) { return light >= 0.0F && light <= 1.0F; });
}

bool HasDefinedHue(const float* bgr) {
  // Beyond the spectrum there is light that no eye has; ITP has no place for it.
  const double m = 0.0691 * bgr[2] + 0.9195 * bgr[1] + 0.0114 * bgr[0];
  const double s = 0.0164 * bgr[2] + 0.0880 * bgr[1] + 0.8956 * bgr[0];
  const double l = 0.6274 * bgr[2] + 0.3293 * bgr[1] + 0.0433 * bgr[0];
  return std::min({l, m, s}) >= 0.0;
}

TEST(AGamutFit, BringsEveryColourWithin) {
  const Pixels fitted = Fitted(*FitIntoBt709(), ManyColors(20000));
  for (std::size_t i = 0; i < fitted.size(); i += 4) {
    ASSERT_TRUE(IsWithin(&fitted[i]))
        << i << ": " << fitted[i] << ' ' << fitted[i + 1] << ' ' << fitted[i + 2];
    ASSERT_EQ(fitted[i + 3], 0.5F);
  }
}

TEST(AGamutFit, KeepsHueAndIntensity) {
  const auto fit = FitIntoBt709();
  const Pixels colors = ManyColors(20000);
  const Pixels fitted = Fitted(*fit, colors);
  std::size_t looked = 0;
  for (std::size_t i = 0; i < colors.size(); i += 4) {
    const bool isTouched = std::memcmp(&colors[i], &fitted[i], 3 * sizeof(float)) != 0;
    if (!isTouched || !HasDefinedHue(&colors[i])) continue;
    const Itp before(&colors[i]);
    const Itp after(&fitted[i]);
    EXPECT_NEAR(after.i, before.i, 1e-3);
    EXPECT_LE(after.Chroma(), before.Chroma() * 1.001);
    if (after.Chroma() < 0.02) continue;
    EXPECT_LT(AngleBetween(after.HueInDegrees(), before.HueInDegrees()), 0.8) << i;
    ++looked;
  }
  EXPECT_GT(looked, 2000U);
}

TEST(AGamutFit, TouchesNothingUpToItsShareOfTheBoundary) {
  const auto fit = FitIntoBt709();
  // Red, green, blue and what lies between, each on its way from grey.
  const float ends[][3] = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}, {0, 1, 1}, {1, 1, 0}, {1, 0, 1}};
  for (const auto& end : ends) {
    for (const float level : {0.01F, 0.1F, 0.5F}) {
      const float purity = 0.6F;
      Pixels pixel;
      for (const float channel : end) {
        pixel.push_back(level * (purity * channel + 1.0F - purity));
      }
      pixel.push_back(1.0F);
      EXPECT_EQ(Fitted(*fit, pixel), pixel);
    }
  }
}

TEST(AGamutFit, LeavesGreysAndWhatIsNotFiniteAlone) {
  const auto fit = FitIntoBt709();
  for (const float grey : {0.0F, 1e-4F, 0.18F, 1.0F}) {
    const Pixels pixel = {grey, grey, grey, 1.0F};
    EXPECT_EQ(Fitted(*fit, pixel), pixel);
  }
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  for (const float strange : {kNaN, kInfinity, -kInfinity}) {
    const Pixels pixel = {strange, 0.5F, -0.1F, 1.0F};
    const Pixels fitted = Fitted(*fit, pixel);
    EXPECT_EQ(std::memcmp(fitted.data(), pixel.data(), 4 * sizeof(float)), 0) << strange;
  }
}

TEST(AGamutFit, GrowsSteadilyWithTheChromaThatComesIn) {
  const auto fit = FitIntoBt709();
  // Towards BT.2020's green, in BT.709 light, and far beyond it.
  double last = 0.0;
  double lastStep = 0.0;
  for (int step = 0; step <= 400; ++step) {
    const float way = static_cast<float>(step) / 400.0F;
    const Pixels fitted =
        Fitted(*fit, {0.3F - 0.34F * way, 0.3F + 0.04F * way, 0.3F - 0.48F * way, 1.0F});
    const double chroma = Itp(fitted.data()).Chroma();
    EXPECT_GE(chroma, last - 2e-5) << step;
    if (step > 1) {
      EXPECT_LT(std::abs(chroma - last), std::abs(lastStep) * 1.5 + 1e-4) << step;
    }
    lastStep = chroma - last;
    last = chroma;
  }
}

TEST(AGamutFit, LeavesRoomForWhatLiesBeyondTheBoundary) {
  const auto fit = FitIntoBt709();
  const Pixels onBoundary = {0.0F, 0.3F, 0.0F, 1.0F};
  const Pixels beyond = {-0.02F, 0.3F, -0.05F, 1.0F};
  const double kept =
      Itp(Fitted(*fit, onBoundary).data()).Chroma() / Itp(onBoundary.data()).Chroma();
  EXPECT_GT(kept, 0.93);
  EXPECT_LT(kept, 0.97);
  EXPECT_GT(Itp(Fitted(*fit, beyond).data()).Chroma(),
            Itp(Fitted(*fit, onBoundary).data()).Chroma() + 1e-3);
}

TEST(AGamutFit, KeepsBrightColoursBelowTheTopOfItsDestination) {
  constexpr double kPeak = 600.0;
  const auto fit = FitIntoBt709(kPeak);
  const float top = static_cast<float>(kPeak / kWhite);
  const Pixels fitted = Fitted(*fit, {-0.2F, 0.9F * top, 0.5F * top, 1.0F, 0.1F, 2 * top, 0, 1});
  for (std::size_t i = 0; i < fitted.size(); ++i) {
    if (i % 4 == 3) continue;
    EXPECT_GE(fitted[i], 0.0F);
    EXPECT_LE(fitted[i], top);
  }
  EXPECT_GT(fitted[1], 1.0F);
}

TEST(AGamutFit, HasTheSameBitsOnEveryInstructionSet) {
  const auto fit = FitIntoBt709();
  // No whole number of tiles, or of vectors.
  const Pixels colors = ManyColors(5003);
  const Pixels baseline = Fitted(*fit, colors, InstructionSet::Baseline);
  for (const InstructionSet set : {InstructionSet::Avx2, InstructionSet::Avx512}) {
    if (!CanRun(set)) continue;
    const Pixels fitted = Fitted(*fit, colors, set);
    EXPECT_EQ(std::memcmp(fitted.data(), baseline.data(), fitted.size() * sizeof(float)), 0);
  }
}

TEST(AGamutFit, HasTheBitsOfThePixelsOwnSteps) {
  const auto fit = FitIntoBt709();
  const Pixels colors = ManyColors(3000);
  const Pixels fitted = Fitted(*fit, colors);
  for (std::size_t i = 0; i < colors.size(); i += 4) {
    float pixel[3] = {colors[i], colors[i + 1], colors[i + 2]};
    if (!IsSurelyFitting(pixel, fit->params)) {
      FitSignals(pixel, fit->params);
      if (FitChroma(pixel, fit->table.data(), fit->params)) continue;
      FitLight(pixel, fit->params);
    }
    ASSERT_EQ(std::memcmp(pixel, &fitted[i], sizeof pixel), 0) << i;
  }
}

TEST(AGamutFit, OverlooksNoPixelThatItWouldTouch) {
  const auto fit = FitIntoBt709();
  GamutFitParams thorough = fit->params;
  thorough.safeRatio = 2.0F;
  const Pixels colors = ManyColors(200000);
  for (std::size_t i = 0; i < colors.size(); i += 4) {
    const float* const color = &colors[i];
    if (!IsSurelyFitting(color, fit->params)) continue;
    float pixel[3] = {color[0], color[1], color[2]};
    FitSignals(pixel, thorough);
    ASSERT_TRUE(FitChroma(pixel, fit->table.data(), thorough))
        << color[0] << ' ' << color[1] << ' ' << color[2];
  }
}

TEST(AGamutFit, IsNotThereForPrimariesThatAreNotKnown) {
  EXPECT_EQ(MakeGamutFit(Of(200), kWhite, kWhite), nullptr);
}

TEST(AGamut, ReachesBeyondANarrowerOne) {
  EXPECT_TRUE(ReachesBeyond(Of(RefHost::kPrimariesBT2020), Of(RefHost::kPrimariesBT709)));
  EXPECT_TRUE(ReachesBeyond(Of(RefHost::kPrimariesP3D65), Of(RefHost::kPrimariesBT709)));
  EXPECT_FALSE(ReachesBeyond(Of(RefHost::kPrimariesBT709), Of(RefHost::kPrimariesBT709)));
  EXPECT_FALSE(ReachesBeyond(Of(RefHost::kPrimariesBT709), Of(RefHost::kPrimariesBT2020)));
  EXPECT_FALSE(ReachesBeyond(Of(200), Of(RefHost::kPrimariesBT709)));
}

}  // namespace
