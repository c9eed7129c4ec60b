#include <bit>
#include <climits>
#include <cmath>
#include <limits>

#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"

namespace {

using PX::GamutMappingUtils::GamutCompressionSettings;
using PX::ToneMappingUtils::ToneMapSettings;
using Quillon::SupportVector;
using testing::ElementsAre;

class RowWalkEdgeCases : public scripted::HostTest {
 protected:
  /// Number of pixels met.
  int Count(int rows, float width) {
    int pixels = 0;
    const SupportVector none;
    Quillon::QuillonImpl().GenerateGamutMappedRows(
        [&](float*, const SupportVector&, const ToneMapSettings&) { ++pixels; }, {}, memory_.data(),
        rows, 12, width, none, none, record_);
    return pixels;
  }

  std::vector<float> memory_ = std::vector<float>(64, 1.0F);
  PX::GamutMappingUtils::GamutMappingSettings record_ = scripted::MakeRecord(5, 1);
};

TEST_F(RowWalkEdgeCases, TakesAnotherColumnForAWidthJustAboveAWholeNumber) {
  EXPECT_EQ(Count(1, 3.0F), 3);
  EXPECT_EQ(Count(1, std::nextafter(3.0F, 4.0F)), 4);
  EXPECT_EQ(Count(1, std::nextafter(3.0F, 2.0F)), 3);
}

TEST_F(RowWalkEdgeCases, TakesOneColumnForTheSmallestWidth) {
  EXPECT_EQ(Count(2, std::numeric_limits<float>::denorm_min()), 2);
}

TEST_F(RowWalkEdgeCases, TakesNoColumnForAWidthOfNegativeZeroOrMinusInfinity) {
  EXPECT_EQ(Count(2, -0.0F), 0);
  EXPECT_EQ(Count(2, -std::numeric_limits<float>::infinity()), 0);
}

TEST_F(RowWalkEdgeCases, TakesNoRowForTheSmallestRowCount) { EXPECT_EQ(Count(INT_MIN, 3.0F), 0); }

TEST_F(RowWalkEdgeCases, WalksOneRowOfOnePixel) { EXPECT_EQ(Count(1, 1.0F), 1); }

TEST_F(RowWalkEdgeCases, WalksWithGamutCompressionAlone) {
  std::vector<long> places;
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      {},
      [&](float* pixel, const SupportVector&, const GamutCompressionSettings&) {
        places.push_back(pixel - memory_.data());
      },
      memory_.data(), 2, 100, 2.0F, none, none, record_);
  EXPECT_THAT(places, ElementsAre(0, 4, 8, 12));
}

TEST_F(RowWalkEdgeCases, LetsTheToneCurveSeeWhatTheCompressionWroteWithinThePixel) {
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [](float* pixel, const SupportVector&, const ToneMapSettings&) { pixel[0] *= 10.0F; },
      [](float* pixel, const SupportVector&, const GamutCompressionSettings&) { pixel[0] += 1.0F; },
      memory_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_EQ(memory_[0], 20.0F);
  EXPECT_EQ(memory_[4], 20.0F);
  EXPECT_EQ(memory_[8], 1.0F);
}

TEST_F(RowWalkEdgeCases, LeavesTheFourthFloatToTheFunctions) {
  memory_[3] = std::bit_cast<float>(0x7FA12345U);
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [](float* pixel, const SupportVector&, const ToneMapSettings&) { pixel[0] = 5.0F; }, {},
      memory_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(memory_[3]), 0x7FA12345U);
  EXPECT_EQ(memory_[7], 1.0F);
}

TEST_F(RowWalkEdgeCases, LetsTheFunctionsWriteTheFourthFloat) {
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [](float* pixel, const SupportVector&, const ToneMapSettings&) { pixel[3] = 5.0F; }, {},
      memory_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_EQ(memory_[3], 5.0F);
  EXPECT_EQ(memory_[7], 5.0F);
}

}  // namespace
