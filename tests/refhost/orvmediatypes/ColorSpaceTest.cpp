#include <gtest/gtest.h>

#include "host/orvmediatypes/ColorSpace.h"
#include "tests/refhost/Spaces.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

TEST(ColorSpace, IsEmptyWhenMadeFromNothing) {
  EXPECT_TRUE(ColorSpace().empty());
  EXPECT_TRUE(ColorSpace(ColorDescription{}).empty());
}

TEST(ColorSpace, IsNotEmptyOnceOneCodePointSaysSomething) {
  EXPECT_FALSE(Space(9, 0).empty());
  EXPECT_FALSE(Space(0, 16).empty());
  EXPECT_FALSE(With(Space(0, 0), &ColorDescription::matrix, std::uint8_t{9}).empty());
}

TEST(ColorSpace, StaysEmptyWithMetadataAlone) {
  EXPECT_TRUE(With(Space(0, 0, 1000), &ColorDescription::fullRange, false).empty());
}

TEST(ColorSpace, IsLinearByTransferEightAlone) {
  EXPECT_TRUE(Space(9, 8).IsLinear());
  EXPECT_FALSE(Space(9, 16).IsLinear());
  EXPECT_FALSE(ColorSpace().IsLinear());
}

TEST(ColorSpace, KeepsItsDescriptionThroughCopies) {
  ColorDescription description;
  description.primaries = 9;
  description.transfer = 18;
  description.matrix = 9;
  description.fullRange = false;
  description.chromaLocation = 2;
  description.peakLuminance = 600;
  description.masteringMaxLuminance = 4000.0F;
  const ColorSpace original(description);
  const ColorSpace copy(original);
  ColorSpace assigned;
  assigned = copy;
  EXPECT_EQ(copy.Description(), description);
  EXPECT_EQ(assigned.Description(), description);
}
