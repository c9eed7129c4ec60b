#include <cstdint>
#include <set>

#include <gtest/gtest.h>

#include "host/pavix/ColorSpaceUtils.h"
#include "host/pavix/ColorSpaces.h"
#include "tests/refhost/Spaces.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace PX::ColorSpaceUtils {

TEST(ColorSpaceUtils, UsesTheNewColorManagement) { EXPECT_TRUE(IsNewColorManagementEnabled()); }

TEST(ColorSpaceUtils, TellsSdrFromHdrByTransfer) {
  const std::set<int> sdr = {1, 4, 5, 6, 7, 11, 13, 14, 15, 17};
  const std::set<int> hdr = {8, 16, 18};
  for (int transfer = 0; transfer < 256; ++transfer) {
    const ColorSpace colorSpace = Space(9, transfer);
    EXPECT_EQ(IsSDRColorSpace(colorSpace), sdr.contains(transfer)) << transfer;
    EXPECT_EQ(IsHDRColorSpace(colorSpace), hdr.contains(transfer)) << transfer;
  }
}

TEST(ColorSpaceUtils, CallsAnEmptySpaceNeitherSdrNorHdr) {
  EXPECT_FALSE(IsSDRColorSpace(ColorSpace()));
  EXPECT_FALSE(IsHDRColorSpace(ColorSpace()));
}

TEST(ColorSpaceUtils, KnowsRec2100HlgByPrimariesAndTransfer) {
  EXPECT_TRUE(IsRec2100HLGColorSpace(Space(9, 18)));
  EXPECT_TRUE(IsRec2100HLGColorSpace(With(Space(9, 18), &ColorDescription::fullRange, false)));
  EXPECT_FALSE(IsRec2100HLGColorSpace(Space(1, 18)));
  EXPECT_FALSE(IsRec2100HLGColorSpace(Space(9, 16)));
}

TEST(GetPeakLuminance, IsTheMetadatasElseTheTransfers) {
  EXPECT_EQ(GetPeakLuminance(Space(0, 16, 4000)), 4000);
  EXPECT_EQ(GetPeakLuminance(Space(0, 16)), 10000);
  EXPECT_EQ(GetPeakLuminance(Space(0, 18)), 1000);
  EXPECT_EQ(GetPeakLuminance(Space(0, 13)), -1);
  EXPECT_EQ(GetPeakLuminance(Space(0, 8)), -1);
  EXPECT_EQ(GetPeakLuminance(ColorSpace()), -1);
}

TEST(GetIfExistsPeakLuminanceFromColorSpaceMetaData, GivesTheMetadatasPeak) {
  int nits = -1;
  EXPECT_TRUE(GetIfExistsPeakLuminanceFromColorSpaceMetaData(
      With(Space(0, 16), &ColorDescription::masteringMaxLuminance, 999.7F), nits));
  EXPECT_EQ(nits, 1000);
}

TEST(GetIfExistsPeakLuminanceFromColorSpaceMetaData, LeavesNitsAloneWithoutMetadata) {
  int nits = 77;
  EXPECT_FALSE(GetIfExistsPeakLuminanceFromColorSpaceMetaData(Space(0, 16), nits));
  EXPECT_EQ(nits, 77);
}

TEST(OR2100PQ, IsFullRangeRgbWithoutMetadata) {
  const auto& description = PX::ColorSpaces::OR2100PQ().Description();
  orvmediatypes::color::ColorDescription expected;
  expected.primaries = 9;
  expected.transfer = 16;
  EXPECT_EQ(description, expected);
  EXPECT_EQ(description.matrix, 0);
  EXPECT_TRUE(description.fullRange);
  EXPECT_EQ(&PX::ColorSpaces::OR2100PQ(), &PX::ColorSpaces::OR2100PQ());
}

}  // namespace PX::ColorSpaceUtils
