#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "mapper/Plan.h"
#include "tests/mapper/OwnPicture.h"

using namespace Quillon::Mapper;  // NOLINT(google-build-using-namespace): all of it is tested

namespace {

constexpr PixelFormat kI210{
    .layout = PixelFormat::Layout::Planar, .bits = 10, .chroma = PixelFormat::Chroma::C422};
constexpr PixelFormat kI412{
    .layout = PixelFormat::Layout::Planar, .bits = 12, .chroma = PixelFormat::Chroma::C444};

const Plan& PQToBt709() {
  static const Plan kPlan = *Plan::Make({*ColorSpaceOfName("bt2100-pq"), {}},
                                        {*ColorSpaceOfName("bt709"), {}}, {}, {1000.0, "given"});
  return kPlan;
}

class Rows : public testing::TestWithParam<std::tuple<PixelFormat, PixelFormat, int>> {};

TEST_P(Rows, OfAMappedPictureAreThoseOfTheWhole) {
  const auto& [from, to, height] = GetParam();
  constexpr int kWidth = 33;
  OwnPicture source(from, kWidth, height);
  source.FillAtRandom(static_cast<unsigned>(height));
  OwnPicture whole(to, kWidth, height);
  ASSERT_FALSE(PQToBt709().Map(source.Read(), whole.Shown()));
  for (const int step : {2, 6, 34}) {
    OwnPicture rows(to, kWidth, height);
    for (int first = 0; first < height; first += step) {
      ASSERT_FALSE(
          PQToBt709().MapRows(source.Read(), rows.Shown(), first, std::min(first + step, height)));
    }
    EXPECT_EQ(rows.Bytes(), whole.Bytes()) << "in steps of " << step;
  }
}

std::string FormatName(const PixelFormat& format) {
  const char* const layouts[] = {"bgra", "planar", "semiplanar"};
  const char* const chroma[] = {"420", "422", "444"};
  return std::string(layouts[static_cast<int>(format.layout)]) +
         (format.layout == PixelFormat::Layout::BGRA ? ""
                                                     : chroma[static_cast<int>(format.chroma)]) +
         "_" + std::to_string(format.bits);
}

INSTANTIATE_TEST_SUITE_P(OfAll, Rows,
                         testing::Combine(testing::Values(kP010, kI010, kI210, kI412, kBGRA16),
                                          testing::Values(kNV12, kI420, kP016, kBGRA8),
                                          testing::Values(1, 75, 98)),
                         [](const auto& info) {
                           return FormatName(std::get<0>(info.param)) + "_to_" +
                                  FormatName(std::get<1>(info.param)) + "_" +
                                  std::to_string(std::get<2>(info.param)) + "_rows";
                         });

TEST(OddRows, AreRefusedWhereChromaHasHalfAsMany) {
  OwnPicture source(kBGRA16, 8, 8);
  source.FillAtRandom(1);
  const OwnPicture mapped(kNV12, 8, 8);
  const auto failure = PQToBt709().MapRows(source.Read(), mapped.Shown(), 1, 4);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, Code::InvalidArgument);
  EXPECT_FALSE(PQToBt709().MapRows(source.Read(), mapped.Shown(), 2, 8));
}

TEST(APictureOfYCbCr, IsInTheRangeThatItsColoursTell) {
  // Narrow-range grey of PQ: code 64 is black, 940 is 10000 nits.
  Source source{*ColorSpaceOfName("bt2100-pq"), {}};
  source.colors.fullRange = false;
  const auto plan = Plan::Make(source, {*ColorSpaceOfName("srgb"), {}}, {}, {1000.0, "given"});
  ASSERT_TRUE(plan);
  OwnPicture picture(kP010, 2, 2);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 2; ++x) picture.Word(0, x, y) = 64U << 6U;
  }
  picture.Word(1, 0, 0) = picture.Word(1, 1, 0) = 512U << 6U;
  OwnPicture mapped(kBGRAFloat, 2, 2);
  ASSERT_FALSE(plan->Map(picture.Read(), mapped.Shown()));
  EXPECT_NEAR(mapped.Floats(0, 0)[0], 0.0, 1e-6);
  EXPECT_EQ(mapped.Floats(0, 0)[3], 1.0F);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 2; ++x) picture.Word(0, x, y) = 940U << 6U;
  }
  ASSERT_FALSE(plan->Map(picture.Read(), mapped.Shown()));
  EXPECT_GE(mapped.Floats(1, 1)[1], 1.0F);
}

}  // namespace
