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

}  // namespace
