#include <limits>

#include <gtest/gtest.h>

#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"
#include "tests/refhost/Spaces.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using RefHost::MetadataPeakNits;
using RefHost::PeakNits;

namespace {

std::optional<int> OfMastering(float nits) {
  return MetadataPeakNits(With(Space(0, 16), &ColorDescription::masteringMaxLuminance, nits));
}

}  // namespace

TEST(MetadataPeakNits, IsAbsentWhereTheColorSpaceGivesNone) {
  EXPECT_FALSE(MetadataPeakNits(Space(0, 16)).has_value());
  EXPECT_FALSE(MetadataPeakNits(Space(0, 16, -4)).has_value());
}

TEST(MetadataPeakNits, TakesThePeakBeforeTheMasteringDisplay) {
  EXPECT_EQ(
      MetadataPeakNits(With(Space(0, 16, 600), &ColorDescription::masteringMaxLuminance, 4000.0F)),
      600);
  EXPECT_EQ(OfMastering(4000.0F), 4000);
}

TEST(MetadataPeakNits, RoundsTheMasteringDisplayToWholeNits) {
  EXPECT_EQ(OfMastering(999.4F), 999);
  EXPECT_EQ(OfMastering(999.5F), 1000);
  EXPECT_FALSE(OfMastering(0.4F).has_value());
}

TEST(MetadataPeakNits, SurvivesMasteringDisplaysThatAreNoNumberOfNits) {
  EXPECT_FALSE(OfMastering(std::numeric_limits<float>::quiet_NaN()).has_value());
  EXPECT_FALSE(OfMastering(-1000.0F).has_value());
  EXPECT_EQ(OfMastering(std::numeric_limits<float>::infinity()), 1000000);
  EXPECT_EQ(OfMastering(1e30F), 1000000);
}

TEST(PeakNits, FallsBackToWhatTheTransferStandsFor) {
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferPQ)), 10000);
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferHLG)), 1000);
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferBT709)), -1);
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferSRGB)), -1);
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferLinear)), -1);
  EXPECT_EQ(PeakNits(ColorSpace()), -1);
}

TEST(PeakNits, PrefersMetadataWhateverTheTransfer) {
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferPQ, 4000)), 4000);
  EXPECT_EQ(PeakNits(Space(0, RefHost::kTransferLinear, 800)), 800);
}
