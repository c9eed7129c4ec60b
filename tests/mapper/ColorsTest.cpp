#include <gtest/gtest.h>

#include "mapper/Colors.h"

using Quillon::Mapper::ColorDescription;
using Quillon::Mapper::ColorSpaceNames;
using Quillon::Mapper::ColorSpaceOfCicp;
using Quillon::Mapper::ColorSpaceOfName;
using Quillon::Mapper::DescribeColorSpace;
using Quillon::Mapper::TellsColors;

namespace {

ColorDescription CodePoints(std::uint8_t primaries, std::uint8_t transfer, std::uint8_t matrix) {
  ColorDescription description;
  description.primaries = primaries;
  description.transfer = transfer;
  description.matrix = matrix;
  return description;
}

TEST(ColorSpaces, AreKnownByNameAndByTheNameOfTheirTransfer) {
  EXPECT_EQ(ColorSpaceOfName("bt2100-pq"), CodePoints(9, 16, 9));
  EXPECT_EQ(ColorSpaceOfName("smpte2084"), CodePoints(9, 16, 9));
  EXPECT_EQ(ColorSpaceOfName("bt2100-hlg"), CodePoints(9, 18, 9));
  EXPECT_EQ(ColorSpaceOfName("p3-d65"), CodePoints(12, 13, 1));
  EXPECT_EQ(ColorSpaceNames(),
            "srgb bt709 p3-d65 bt2020 bt2100-pq bt2100-hlg linear-bt709 "
            "linear-p3 linear-bt2020 acescg aces2065-1");
}

TEST(ColorSpaces, OfLinearLightAreKnownByNameToo) {
  EXPECT_EQ(ColorSpaceOfName("linear-bt709"), CodePoints(1, 8, 0));
  EXPECT_EQ(ColorSpaceOfName("linear-p3"), CodePoints(12, 8, 0));
  EXPECT_EQ(ColorSpaceOfName("linear-bt2020"), CodePoints(9, 8, 0));
  for (const char* name : {"acescg", "aces2065-1"}) {
    const auto aces = ColorSpaceOfName(name);
    ASSERT_TRUE(aces);
    EXPECT_EQ(aces->transfer, 8);
    EXPECT_TRUE(TellsColors(*aces));
    EXPECT_NEAR(aces->chromaticities.white.x, 0.32168, 1e-5);
  }
  EXPECT_NEAR(ColorSpaceOfName("acescg")->chromaticities.red.x, 0.713, 1e-9);
  EXPECT_EQ(DescribeColorSpace(*ColorSpaceOfName("acescg")), "ACEScg (CICP 2/8/0)");
  EXPECT_EQ(DescribeColorSpace(*ColorSpaceOfName("aces2065-1")), "ACES2065-1 (CICP 2/8/0)");
  EXPECT_EQ(DescribeColorSpace(CodePoints(2, 8, 0)), "linear light (CICP 2/8/0)");
}

TEST(ColorSpaces, OfNoNameAreNone) {
  EXPECT_FALSE(ColorSpaceOfName(""));  // bt709 has no second name
  EXPECT_FALSE(ColorSpaceOfName("BT2100-PQ"));
}

TEST(CodePoints, AreThreeNumbersAndNothingElse) {
  EXPECT_EQ(ColorSpaceOfCicp("9/16/0"), CodePoints(9, 16, 0));
  EXPECT_EQ(ColorSpaceOfCicp("255/0/1"), CodePoints(255, 0, 1));
  for (const char* wrong : {"", "9", "9/16", "9/16/", "9/16/9/", "9/16/256", " 9/16/9", "9,16,9"}) {
    EXPECT_FALSE(ColorSpaceOfCicp(wrong)) << wrong;
  }
}

TEST(Descriptions, HaveTheTitleWhereThereIsOne) {
  EXPECT_EQ(DescribeColorSpace(CodePoints(9, 16, 0)), "BT.2100 PQ (CICP 9/16/0)");
  EXPECT_EQ(DescribeColorSpace(CodePoints(12, 16, 0)), "PQ (CICP 12/16/0)");
  EXPECT_EQ(DescribeColorSpace(CodePoints(5, 4, 5)), "CICP 5/4/5");
}

TEST(Colors, AreToldByCodePointsOrCoordinates) {
  EXPECT_TRUE(TellsColors(CodePoints(9, 16, 2)));
  EXPECT_FALSE(TellsColors(CodePoints(9, 2, 9)));
  EXPECT_FALSE(TellsColors(CodePoints(9, 0, 9)));
  ColorDescription coordinates = CodePoints(2, 8, 0);
  EXPECT_FALSE(TellsColors(coordinates));
  coordinates.chromaticities = {{0.64, 0.33}, {0.3, 0.6}, {0.15, 0.06}, {0.3127, 0.329}};
  EXPECT_TRUE(TellsColors(coordinates));
}

}  // namespace
