#include <cmath>

#include <gtest/gtest.h>

#include "bench/quality/Light.h"
#include "curves/St2084.h"

using namespace Quality;

namespace {

void ExpectNear(const Light& light, const Light& expected, double tolerance) {
  EXPECT_NEAR(light.red, expected.red, tolerance);
  EXPECT_NEAR(light.green, expected.green, tolerance);
  EXPECT_NEAR(light.blue, expected.blue, tolerance);
}

TEST(QualityLight, OfBt709PrimariesIsAsBt2087Prints) {
  // ITU-R BT.2087-0, 2.1: the columns of its matrix.
  ExpectNear(LightFrom(Gamut::BT709, {1.0, 0.0, 0.0}), {0.6274, 0.0691, 0.0164}, 5e-5);
  ExpectNear(LightFrom(Gamut::BT709, {0.0, 1.0, 0.0}), {0.3293, 0.9195, 0.0880}, 5e-5);
  ExpectNear(LightFrom(Gamut::BT709, {0.0, 0.0, 1.0}), {0.0433, 0.0114, 0.8956}, 5e-5);
}

TEST(QualityLight, ComesBackFromTheComponentsOfEachGamut) {
  const Light light{300.0, 20.0, 5.0};
  for (const Gamut gamut : {Gamut::BT709, Gamut::P3, Gamut::BT2020}) {
    ExpectNear(LightFrom(gamut, ComponentsIn(gamut, light)), light, 1e-9);
  }
}

TEST(QualityLight, OfAChromaticityHasItsLuminance) {
  const Light white = LightOfxyY(0.3127, 0.3290, 100.0);
  ExpectNear(white, {100.0, 100.0, 100.0}, 1e-9);
  // The red primary of BT.709, whose luminance is 0.2126 of white's.
  const Components red = ComponentsIn(Gamut::BT709, LightOfxyY(0.64, 0.33, 21.2639));
  EXPECT_NEAR(red[0], 100.0, 0.01);
  EXPECT_NEAR(red[1], 0.0, 1e-9);
  EXPECT_NEAR(red[2], 0.0, 1e-9);
}

TEST(QualityLight, LiesInAGamutHoweverBrightItIs) {
  const Light red709 = LightFrom(Gamut::BT709, {5000.0, 0.0, 0.0});
  EXPECT_TRUE(IsInside(Gamut::BT709, red709));
  EXPECT_TRUE(IsInside(Gamut::P3, red709));
  const Light redP3 = LightFrom(Gamut::P3, {1.0, 0.0, 0.0});
  EXPECT_FALSE(IsInside(Gamut::BT709, redP3));
  EXPECT_TRUE(IsInside(Gamut::P3, redP3));
  EXPECT_FALSE(IsInside(Gamut::P3, {0.0, 1.0, 0.0}));
}

TEST(QualityLight, OfADisplayHasWhiteAt203NitsAndTheCurveOfSrgb) {
  ExpectNear(ShownBy(Signal{1.0, 1.0, 1.0}), {203.0, 203.0, 203.0}, 1e-9);
  ExpectNear(ShownBy(Signal{0.0, 0.0, 0.0}), {0.0, 0.0, 0.0}, 0.0);
  // IEC 61966-2-1: half of the signal is 0.2140 of the light.
  ExpectNear(ShownBy(Signal{0.5, 0.5, 0.5}), {43.45, 43.45, 43.45}, 0.01);
  ExpectNear(ShownBy(Signal{1.0, 0.0, 0.0}), LightFrom(Gamut::BT709, {203.0, 0.0, 0.0}), 1e-9);
}

TEST(QualityLight, OfAGreyHasItsCodeValue) {
  EXPECT_NEAR(GreyCode(203.0), 255.0, 1e-9);
  const Light shown = ShownBy(Signal{0.25, 0.25, 0.25});
  EXPECT_NEAR(GreyCode(shown.green), 0.25 * 255.0, 1e-6);
}

TEST(QualityPolar, HasHalfOfCtAndAllOfCp) {
  const Polar polar = PolarOf(ICtCp{0.5, 0.2, 0.1});
  EXPECT_DOUBLE_EQ(polar.intensity, 0.5);
  EXPECT_NEAR(polar.chroma, std::sqrt(0.02), 1e-12);
  EXPECT_NEAR(polar.hue, 45.0, 1e-9);
  EXPECT_NEAR(PolarOf(ICtCp{0.5, 0.0, -0.1}).hue, -90.0, 1e-9);
}

TEST(QualityPolar, ComesBackFromItsLight) {
  for (const double hue : {-150.0, -60.0, 0.0, 45.0, 120.0}) {
    const Polar polar = PolarOf(LightOf({0.6, 0.04, hue}));
    EXPECT_NEAR(polar.intensity, 0.6, 1e-9);
    EXPECT_NEAR(polar.chroma, 0.04, 1e-9);
    EXPECT_NEAR(polar.hue, hue, 1e-6);
  }
}

TEST(QualityBoundary, IsWhereAComponentOfTheGamutEnds) {
  const double intensity = EncodeSt2084(50.0);
  for (const Gamut gamut : {Gamut::BT709, Gamut::P3, Gamut::BT2020}) {
    for (const double hue : {-170.0, -80.0, 10.0, 100.0}) {
      const double chroma = BoundaryChroma(gamut, intensity, hue, 10000.0);
      const Components on = ComponentsIn(gamut, LightOf({intensity, chroma, hue}));
      const double least = std::min({on[0], on[1], on[2]});
      EXPECT_NEAR(least, 0.0, 1e-4) << hue;
      EXPECT_FALSE(IsInside(gamut, LightOf({intensity, 1.01 * chroma, hue}))) << hue;
    }
  }
}

TEST(QualityBoundary, StaysBelowThePeak) {
  const double intensity = EncodeSt2084(800.0);
  const double chroma = BoundaryChroma(Gamut::BT2020, intensity, 60.0, 1000.0);
  const Light light = LightOf({intensity, chroma, 60.0});
  EXPECT_NEAR(std::max({light.red, light.green, light.blue}), 1000.0, 1e-3);
  EXPECT_NEAR(BoundaryChroma(Gamut::BT709, EncodeSt2084(1000.0), 60.0, 1000.0), 0.0, 1e-6);
}

}  // namespace
