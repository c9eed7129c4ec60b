#include <bit>
#include <climits>
#include <cmath>
#include <limits>

#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"

namespace {

using PX::GamutMappingUtils::GamutCompressionSettings;
using PX::ToneMappingUtils::ToneMapSettings;
using Quillon::GamutCompressionPixelFunction;
using Quillon::SupportVector;
using Quillon::ToneMapPixelFunction;
using scripted::Lines;
using testing::ElementsAre;
using testing::IsEmpty;

class RowWalk : public scripted::HostTest {
 protected:
  /// Walks rows and says at which floats, counted from the first pixel, pixels were met.
  std::vector<long> Walk(int rows, int stride, float width) {
    std::vector<long> places;
    const ToneMapPixelFunction note = [&](float* pixel, const SupportVector&,
                                          const ToneMapSettings&) {
      places.push_back(pixel - pixels_.data());
    };
    const SupportVector none;
    Quillon::QuillonImpl().GenerateGamutMappedRows(note, {}, pixels_.data(), rows, stride, width,
                                                   none, none, record_);
    return places;
  }

  std::vector<float> pixels_ = std::vector<float>(256, 1.0F);
  PX::GamutMappingUtils::GamutMappingSettings record_ = scripted::MakeRecord(5, 1);
};

TEST_F(RowWalk, VisitsEveryPixelOfEveryRowInOrder) {
  EXPECT_THAT(Walk(2, 12, 3.0F), ElementsAre(0, 4, 8, 12, 16, 20));
}

TEST_F(RowWalk, RunsOnPackedWhateverTheStride) {
  EXPECT_THAT(Walk(2, 100, 3.0F), ElementsAre(0, 4, 8, 12, 16, 20));
  EXPECT_THAT(Walk(2, 0, 3.0F), ElementsAre(0, 4, 8, 12, 16, 20));
  EXPECT_THAT(Walk(2, -100, 3.0F), ElementsAre(0, 4, 8, 12, 16, 20));
}

TEST_F(RowWalk, DoesNothingForAWidthThatIsNotPositive) {
  EXPECT_THAT(Walk(2, 12, 0.0F), IsEmpty());
  EXPECT_THAT(Walk(2, 12, -3.0F), IsEmpty());
  EXPECT_THAT(Walk(2, 12, std::nanf("")), IsEmpty());
}

TEST_F(RowWalk, ComparesTheColumnWithTheWidthAsAFloat) {
  EXPECT_THAT(Walk(1, 12, 2.5F), ElementsAre(0, 4, 8));
}

TEST_F(RowWalk, DoesNothingForARowCountThatIsNotPositive) {
  EXPECT_THAT(Walk(0, 12, 3.0F), IsEmpty());
  EXPECT_THAT(Walk(-1, 12, 3.0F), IsEmpty());
}

TEST_F(RowWalk, ReadsTheRowCountAtEveryRow) {
  int rows = 10;
  int visits = 0;
  const ToneMapPixelFunction stopAfterThree = [&](float*, const SupportVector&,
                                                  const ToneMapSettings&) {
    if (++visits == 3) rows = 2;
  };
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(stopAfterThree, {}, pixels_.data(), rows, 8, 2.0F,
                                                 none, none, record_);
  EXPECT_EQ(visits, 4);
}

TEST_F(RowWalk, CompressesTheGamutBeforeItToneMapsEachPixel) {
  Lines visits;
  const auto at = [&](const char* step, const float* pixel) {
    visits.push_back(step + std::to_string(pixel - pixels_.data()));
  };
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [&](float* pixel, const SupportVector&, const ToneMapSettings&) { at("tone ", pixel); },
      [&](float* pixel, const SupportVector&, const GamutCompressionSettings&) {
        at("gamut ", pixel);
      },
      pixels_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_THAT(visits, ElementsAre("gamut 0", "tone 0", "gamut 4", "tone 4"));
}

TEST_F(RowWalk, HandsEachFunctionItsOwnVectorAndItsPartOfTheRecord) {
  const SupportVector toneMapParams(3);
  const SupportVector gamutParams(1);
  int visits = 0;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [&](float*, const SupportVector& params, const ToneMapSettings& settings) {
        EXPECT_EQ(&params, &toneMapParams);
        EXPECT_EQ(&settings, &record_.toneMapSettings);
        ++visits;
      },
      [&](float*, const SupportVector& params, const GamutCompressionSettings& settings) {
        EXPECT_EQ(&params, &gamutParams);
        EXPECT_EQ(&settings, &static_cast<const GamutCompressionSettings&>(record_));
        ++visits;
      },
      pixels_.data(), 1, 4, 1.0F, toneMapParams, gamutParams, record_);
  EXPECT_EQ(visits, 2);
}

TEST_F(RowWalk, LeavesPixelsAloneWithoutFunctions) {
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows({}, {}, pixels_.data(), 2, 12, 3.0F, none, none,
                                                 record_);
  EXPECT_THAT(pixels_, testing::Each(1.0F));
}

TEST_F(RowWalk, NeitherAllocatesNorCallsTheHostPerPixel) {
  const ToneMapPixelFunction nothing = [](float*, const SupportVector&, const ToneMapSettings&) {};
  const SupportVector none;
  scripted::Recycler::Instance().FailAllocation(0);
  Quillon::QuillonImpl().GenerateGamutMappedRows(nothing, {}, pixels_.data(), 4, 16, 4.0F, none,
                                                 none, record_);
  EXPECT_EQ(scripted::Recycler::Instance().Allocations(), 0);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

class CountedRowWalk : public scripted::HostTest {
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

TEST_F(CountedRowWalk, TakesAnotherColumnForAWidthJustAboveAWholeNumber) {
  EXPECT_EQ(Count(1, 3.0F), 3);
  EXPECT_EQ(Count(1, std::nextafter(3.0F, 4.0F)), 4);
  EXPECT_EQ(Count(1, std::nextafter(3.0F, 2.0F)), 3);
}

TEST_F(CountedRowWalk, TakesOneColumnForTheSmallestWidth) {
  EXPECT_EQ(Count(2, std::numeric_limits<float>::denorm_min()), 2);
}

TEST_F(CountedRowWalk, TakesNoColumnForAWidthOfNegativeZeroOrMinusInfinity) {
  EXPECT_EQ(Count(2, -0.0F), 0);
  EXPECT_EQ(Count(2, -std::numeric_limits<float>::infinity()), 0);
}

TEST_F(CountedRowWalk, TakesNoRowForTheSmallestRowCount) { EXPECT_EQ(Count(INT_MIN, 3.0F), 0); }

TEST_F(CountedRowWalk, WalksOneRowOfOnePixel) { EXPECT_EQ(Count(1, 1.0F), 1); }

TEST_F(CountedRowWalk, WalksWithGamutCompressionAlone) {
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

TEST_F(CountedRowWalk, LetsTheToneCurveSeeWhatTheCompressionWroteWithinThePixel) {
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [](float* pixel, const SupportVector&, const ToneMapSettings&) { pixel[0] *= 10.0F; },
      [](float* pixel, const SupportVector&, const GamutCompressionSettings&) { pixel[0] += 1.0F; },
      memory_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_EQ(memory_[0], 20.0F);
  EXPECT_EQ(memory_[4], 20.0F);
  EXPECT_EQ(memory_[8], 1.0F);
}

TEST_F(CountedRowWalk, LeavesTheFourthFloatToTheFunctions) {
  memory_[3] = std::bit_cast<float>(0x7FA12345U);
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [](float* pixel, const SupportVector&, const ToneMapSettings&) { pixel[0] = 5.0F; }, {},
      memory_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(memory_[3]), 0x7FA12345U);
  EXPECT_EQ(memory_[7], 1.0F);
}

TEST_F(CountedRowWalk, LetsTheFunctionsWriteTheFourthFloat) {
  const SupportVector none;
  Quillon::QuillonImpl().GenerateGamutMappedRows(
      [](float* pixel, const SupportVector&, const ToneMapSettings&) { pixel[3] = 5.0F; }, {},
      memory_.data(), 1, 8, 2.0F, none, none, record_);
  EXPECT_EQ(memory_[3], 5.0F);
  EXPECT_EQ(memory_[7], 5.0F);
}

}  // namespace
