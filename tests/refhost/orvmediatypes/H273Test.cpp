#include <cstdint>
#include <limits>
#include <set>

#include <gtest/gtest.h>

#include "refhost/orvmediatypes/H273.h"
#include "tests/refhost/Spaces.h"

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;
using orvmediatypes::color::ColorDescription;

namespace {

std::optional<Chromaticities> OfCodePoint(int primaries) {
  return RefHost::ChromaticitiesOf(Space(primaries, 0));
}

std::optional<Chromaticities> OfCoordinates(const Chromaticities& coordinates) {
  return RefHost::ChromaticitiesOf(With(Space(RefHost::kUnspecifiedCodePoint, 0),
                                        &ColorDescription::chromaticities, coordinates));
}

const Chromaticities kAcesAP0 = {
    {0.7347, 0.2653}, {0.0, 1.0}, {0.0001, -0.0770}, {0.32168, 0.33767}};

}  // namespace

TEST(ChromaticitiesOf, KnowsTheCodePointsThatHaveChromaticitiesAndNoOthers) {
  const std::set<int> known = {1, 4, 5, 6, 7, 8, 9, 10, 11, 12, 22};
  for (int primaries = 0; primaries < 256; ++primaries) {
    EXPECT_EQ(OfCodePoint(primaries).has_value(), known.contains(primaries)) << primaries;
  }
}

TEST(ChromaticitiesOf, GivesTheCoordinatesOfTheStandards) {
  const Chromaticity d65 = {0.3127, 0.3290};
  EXPECT_EQ(OfCodePoint(1), (Chromaticities{{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, d65}));
  EXPECT_EQ(OfCodePoint(5), (Chromaticities{{0.64, 0.33}, {0.29, 0.60}, {0.15, 0.06}, d65}));
  EXPECT_EQ(OfCodePoint(6), (Chromaticities{{0.63, 0.34}, {0.31, 0.595}, {0.155, 0.07}, d65}));
  EXPECT_EQ(OfCodePoint(7), OfCodePoint(6));
  EXPECT_EQ(OfCodePoint(9), (Chromaticities{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, d65}));
  EXPECT_EQ(OfCodePoint(11),
            (Chromaticities{{0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}, {0.314, 0.351}}));
  EXPECT_EQ(OfCodePoint(12), (Chromaticities{{0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}, d65}));
}

TEST(ChromaticitiesOf, TakesCoordinatesWherePrimariesAreUnspecified) {
  EXPECT_EQ(OfCoordinates(kAcesAP0), kAcesAP0);
}

TEST(ChromaticitiesOf, IgnoresCoordinatesBesideACodePoint) {
  EXPECT_EQ(
      RefHost::ChromaticitiesOf(With(Space(9, 0), &ColorDescription::chromaticities, kAcesAP0)),
      OfCodePoint(9));
}

TEST(ChromaticitiesOf, RefusesCoordinatesThatSpanNoColorSpace) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(OfCoordinates({}).has_value());
  const Chromaticities sound = *OfCodePoint(1);
  Chromaticities onOneLine = sound;
  onOneLine.blue = {0.47, 0.465};
  EXPECT_FALSE(OfCoordinates(onOneLine).has_value());
  Chromaticities whiteOutside = sound;
  whiteOutside.white = {0.1, 0.8};
  EXPECT_FALSE(OfCoordinates(whiteOutside).has_value());
  Chromaticities whiteIsAPrimary = sound;
  whiteIsAPrimary.white = sound.red;
  EXPECT_FALSE(OfCoordinates(whiteIsAPrimary).has_value());
  for (const double bad : {nan, infinity, -infinity}) {
    for (Chromaticity Chromaticities::*point : {&Chromaticities::red, &Chromaticities::green,
                                                &Chromaticities::blue, &Chromaticities::white}) {
      Chromaticities broken = sound;
      (broken.*point).x = bad;
      EXPECT_FALSE(OfCoordinates(broken).has_value()) << bad;
    }
  }
}
