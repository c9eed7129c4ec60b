#include <array>
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "mapper/Plan.h"
#include "tests/mapper/OwnPicture.h"

using namespace Quillon::Mapper;  // NOLINT(google-build-using-namespace): all of it is tested
using testing::HasSubstr;

namespace {

constexpr int kWidth = 9;
constexpr int kHeight = 7;

Plan PlanTo(const char* target, const Settings& settings = {}) {
  return *Plan::Make({*ColorSpaceOfName("bt2100-pq"), {}}, {*ColorSpaceOfName(target), {}},
                     settings, {1000.0, "given"});
}

void FillGrey(OwnPicture& picture, float signal) {
  for (int y = 0; y < picture.Shown().height; ++y) {
    for (int x = 0; x < picture.Shown().width; ++x) {
      float* pixel = picture.Floats(x, y);
      pixel[0] = pixel[1] = pixel[2] = signal;
      pixel[3] = 0.5F;
    }
  }
}

double SrgbOf(double light) {
  return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
}

TEST(AMappedPicture, KeepsGreyBelowTheKneeAndBringsThePeakToWhite) {
  const Plan plan = PlanTo("srgb");
  OwnPicture source(kBGRAFloat, kWidth, kHeight);
  OwnPicture mapped(kBGRAFloat, kWidth, kHeight);
  FillGrey(source, static_cast<float>(EncodeSt2084(20.0)));
  float* peak = source.Floats(3, 2);
  peak[0] = peak[1] = peak[2] = static_cast<float>(EncodeSt2084(1000.0));
  ASSERT_FALSE(plan.Map(source.Read(), mapped.Shown()));
  EXPECT_NEAR(mapped.Floats(0, 0)[1], SrgbOf(20.0 / 203.0), 2e-5);
  EXPECT_NEAR(mapped.Floats(3, 2)[1], 1.0, 2e-5);
  EXPECT_EQ(mapped.Floats(0, 0)[3], 0.5F);
}

/// BT.2020's green at 100 nits, in PQ.
OwnPicture WideGreen() {
  OwnPicture picture(kBGRAFloat, 1, 1);
  FillGrey(picture, 0.0F);
  picture.Floats(0, 0)[1] = static_cast<float>(EncodeSt2084(100.0));
  return picture;
}

TEST(AMappedPicture, OfFloatsKeepsWhatLiesBeyondTheGamutUnlessItIsToBeFitted) {
  const OwnPicture green = WideGreen();
  OwnPicture mapped(kBGRAFloat, 1, 1);
  ASSERT_FALSE(PlanTo("srgb").Map(green.Read(), mapped.Shown()));
  EXPECT_LT(mapped.Floats(0, 0)[2], -0.1F);
  ASSERT_FALSE(PlanTo("srgb", {.fit = GamutFitting::Hue}).Map(green.Read(), mapped.Shown()));
  EXPECT_GE(mapped.Floats(0, 0)[2], 0.0F);
}

TEST(AMappedPicture, OfIntegersIsFittedUnlessItIsToBeClipped) {
  const OwnPicture green = WideGreen();
  OwnPicture mapped(kBGRA16, 1, 1);
  OwnPicture fitted(kBGRA16, 1, 1);
  OwnPicture clipped(kBGRA16, 1, 1);
  ASSERT_FALSE(PlanTo("srgb").Map(green.Read(), mapped.Shown()));
  ASSERT_FALSE(PlanTo("srgb", {.fit = GamutFitting::Hue}).Map(green.Read(), fitted.Shown()));
  ASSERT_FALSE(PlanTo("srgb", {.fit = GamutFitting::Clip}).Map(green.Read(), clipped.Shown()));
  EXPECT_EQ(mapped.Bytes(), fitted.Bytes());
  EXPECT_NE(mapped.Bytes(), clipped.Bytes());
}

TEST(AMappedPicture, TouchesNeitherTheSourceNorWhatLiesPastTheRows) {
  const Plan plan = PlanTo("srgb");
  OwnPicture source(kBGRA16, kWidth, kHeight);
  source.FillAtRandom(1);
  const std::vector<std::byte> before = source.Bytes();
  OwnPicture mapped(kBGRA8, kWidth, kHeight);
  ASSERT_FALSE(plan.Map(source.Read(), mapped.Shown()));
  EXPECT_EQ(source.Bytes(), before);
  const auto rowBytes = static_cast<std::size_t>(mapped.Shown().rowBytes[0]);
  for (std::size_t y = 0; y < kHeight; ++y) {
    for (std::size_t i = std::size_t{4} * kWidth; i < rowBytes; ++i) {
      ASSERT_EQ(mapped.Bytes()[y * rowBytes + i], std::byte{0xA5});
    }
  }
}

TEST(AMappedPicture, IsTheSameFromEveryThread) {
  const Plan plan = PlanTo("srgb");
  OwnPicture source(kBGRAFloat, 64, 48);
  source.FillAtRandom(2);
  OwnPicture alone(kBGRAFloat, 64, 48);
  ASSERT_FALSE(plan.Map(source.Read(), alone.Shown()));
  std::vector<OwnPicture> mapped;
  for (int i = 0; i < 6; ++i) mapped.emplace_back(kBGRAFloat, 64, 48);
  std::vector<std::thread> threads;
  for (OwnPicture& picture : mapped) {
    threads.emplace_back([&] { EXPECT_FALSE(plan.Map(source.Read(), picture.Shown())); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const OwnPicture& picture : mapped) EXPECT_EQ(picture.Bytes(), alone.Bytes());
}

TEST(RowsOfAMappedPicture, AreThoseOfTheWhole) {
  const Plan plan = PlanTo("bt2100-hlg");
  OwnPicture source(kBGRAHalf, kWidth, kHeight);
  source.FillAtRandom(3);
  OwnPicture whole(kBGRA16, kWidth, kHeight);
  ASSERT_FALSE(plan.Map(source.Read(), whole.Shown()));
  OwnPicture rows(kBGRA16, kWidth, kHeight);
  for (const auto& [first, last] : {std::pair{0, 3}, {3, 4}, {4, 7}}) {
    ASSERT_FALSE(plan.MapRows(source.Read(), rows.Shown(), first, last));
  }
  EXPECT_EQ(rows.Bytes(), whole.Bytes());
}

TEST(RowsOfAMappedPicture, OutsideOfItAreRefused) {
  const Plan plan = PlanTo("srgb");
  OwnPicture source(kBGRAFloat, kWidth, kHeight);
  FillGrey(source, 0.5F);
  OwnPicture mapped(kBGRAFloat, kWidth, kHeight);
  const std::vector<std::byte> before = mapped.Bytes();
  for (const auto& [first, last] : {std::pair{-1, 3}, {0, kHeight + 1}, {4, 4}, {5, 3}}) {
    const auto failure = plan.MapRows(source.Read(), mapped.Shown(), first, last);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::InvalidArgument);
  }
  EXPECT_EQ(mapped.Bytes(), before);
}

TEST(APicture, ThatCannotBeOneIsRefused) {
  const Plan plan = PlanTo("srgb");
  OwnPicture source(kBGRAFloat, kWidth, kHeight);
  FillGrey(source, 0.5F);
  const OwnPicture mapped(kBGRAFloat, kWidth, kHeight);
  Picture null = mapped.Shown();
  null.planes[0] = nullptr;
  Picture narrow = mapped.Shown();
  narrow.rowBytes[0] = kWidth * 16 - 1;
  Picture unset = mapped.Shown();
  unset.rowBytes[0] = 0;
  Picture empty = mapped.Shown();
  empty.height = 0;
  Picture odd = mapped.Shown();
  odd.format.bits = 24;
  Picture smaller = mapped.Shown();
  --smaller.width;
  for (const Picture& wrong : {null, narrow, unset, empty, odd, smaller}) {
    const auto failure = plan.Map(source.Read(), wrong);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::InvalidArgument) << failure->message;
  }
}

TEST(TheEngine, IsQuotedWhereItRefuses) {
  const Plan plan = PlanTo("srgb", {.gamut = static_cast<GamutAlgorithm>(7)});
  OwnPicture source(kBGRAFloat, kWidth, kHeight);
  FillGrey(source, 0.5F);
  const OwnPicture mapped(kBGRAFloat, kWidth, kHeight);
  const auto failure = plan.Map(source.Read(), mapped.Shown());
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, Code::EngineRefused);
  EXPECT_THAT(failure->message, HasSubstr("0xA00F000C"));
  EXPECT_FALSE(failure->trace.empty());
}

TEST(MeasuredLight, CountsTheLargestComponentAndLeavesOutWhatIsNoLight) {
  OwnPicture picture(kBGRAFloat, 2, 2);
  FillGrey(picture, 0.0F);
  const std::array<float, 4> bright = {1.0F, -2.0F, 4.0F, 1.0F};
  std::memcpy(picture.Floats(0, 0), bright.data(), sizeof bright);
  picture.Floats(1, 1)[0] = NAN;
  picture.Floats(1, 1)[1] = INFINITY;
  const auto levels = MeasureLight(picture.Read(), *ColorSpaceOfCicp("9/8/0"), 100);
  ASSERT_TRUE(levels);
  EXPECT_EQ(levels->peakNits, 400.0);
  EXPECT_EQ(levels->averageNits, 100.0);
}

TEST(MeasuredLight, HasASteadyPeakThatAFewPixelsDoNotMove) {
  constexpr int kSide = 200;
  OwnPicture picture(kBGRAFloat, kSide, kSide);
  FillGrey(picture, 1.0F);
  for (int x = 0; x < 4; ++x) picture.Floats(x, 7)[1] = 1e6F;  // one in ten thousand
  const auto colors = *ColorSpaceOfCicp("9/8/0");
  EXPECT_EQ(MeasureLight(picture.Read(), colors, 203)->steadyPeakNits, 203.0);
  EXPECT_EQ(MeasureLight(picture.Read(), colors, 203, 100.0)->steadyPeakNits, 203e6);
  picture.Floats(4, 7)[1] = 1e5F;
  // No light is too bright to be told from others.
  EXPECT_EQ(MeasureLight(picture.Read(), colors, 203)->steadyPeakNits, 203e5);
}

TEST(MeasuredLight, IsThatOfBt2020PrimariesWhateverTheContainer) {
  OwnPicture picture(kBGRAFloat, 1, 1);
  const std::array<float, 4> red = {0.0F, 0.0F, 1.0F, 1.0F};
  std::memcpy(picture.Floats(0, 0), red.data(), sizeof red);
  // ITU-R BT.2087, table 2: BT.709's red has 0.6274 of BT.2020's.
  EXPECT_NEAR(MeasureLight(picture.Read(), *ColorSpaceOfCicp("1/8/0"), 100)->peakNits, 62.74, 0.01);
  EXPECT_NEAR(MeasureLight(picture.Read(), *ColorSpaceOfCicp("1/16/0"), 100)->peakNits, 6274, 1);
  EXPECT_EQ(MeasureLight(picture.Read(), *ColorSpaceOfCicp("1/13/0"), 100)->peakNits, 100.0);
}

}  // namespace
