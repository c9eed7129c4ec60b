#include <gtest/gtest.h>

#include "gpu/PixelLayout.h"

namespace {

constexpr std::uint32_t kFourCC = 0x61724742U;

TEST(PixelLayout, CountsTheBytesOfFourInterleavedComponents) {
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x00080130U}), 4U) << "8 bits";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x00080132U}), 4U) << "10 bits, packed";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x00080134U}), 8U) << "16 bits";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x00080136U}), 8U) << "half float";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x00080138U}), 12U) << "24 bits";
  EXPECT_EQ(Quillon::BytesPerPixel(orvmediatypes::kLinearFloatBGRA), 16U) << "float";
}

TEST(PixelLayout, HasNoBytesForOtherDepthsAndLayouts) {
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x0008013CU}), 0U) << "depth code 6";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x0008013EU}), 0U) << "depth code 7";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x0000013AU}), 0U);
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x0010013AU}), 0U) << "planar";
  EXPECT_EQ(Quillon::BytesPerPixel({kFourCC, 0x0018013AU}), 0U) << "semi-planar";
  EXPECT_EQ(Quillon::BytesPerPixel({}), 0U);
}

TEST(PixelLayout, LooksAtNoOtherBitOfAFormat) {
  EXPECT_EQ(Quillon::BytesPerPixel({0, ~0x00180000U | 0x00080000U}), 0U) << "depth code 7";
  EXPECT_EQ(Quillon::BytesPerPixel({0, 0xFFE9FFF7U & ~0x00100008U}), 8U);
  EXPECT_EQ(Quillon::FormatFlag({0, 0xFFFFFFF7U}), 0U);
  EXPECT_EQ(Quillon::FormatFlag({0xFFFFFFFFU, 6U}), 0U);
}

TEST(PixelLayout, FlagsEveryFormatButHalfFloat) {
  for (std::uint32_t depthCode = 0; depthCode < 8; ++depthCode) {
    EXPECT_EQ(Quillon::FormatFlag({kFourCC, 0x00080130U | depthCode << 1U}),
              depthCode == 3 ? 0 : 1);
  }
}

}  // namespace
