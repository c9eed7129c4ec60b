// The order of the curves' operations, to the last bit. Powers are exact here, or given.

#include <algorithm>
#include <array>
#include <cmath>

#include "curves/Bt2390.h"
#include "curves/Bt2446A.h"
#include "curves/Car.h"
#include "curves/HuePreservation.h"
#include "tests/tonemap/CurveTest.h"
#include "tonemap/HuePreservation.h"

namespace {

using tonemap::Bits;
using tonemap::ExpectBits;
using tonemap::Pixel;

TEST(CurveOrder, CarAddsTheRoomToTheDistanceBeforeItTakesTheRestAway) {
  // The largest channel lies 16^n above the knee: its power is 32^n. Of each sum in another order,
  // some of the cases have another result.
  const std::array<float, 3> excesses = {0.0625F, 1.0F, 16.0F};
  const std::array<float, 3> powers = {0.03125F, 1.0F, 32.0F};
  std::array<int, 4> otherOrders{};
  for (const float knee : {0.53125F, 0.25F, 0.0078125F, 0.875F}) {
    for (const float peak : {1.1F, 0.97F, 2.3F, 4.926108F}) {
      for (const float a : {1.4F, 0.0137F, 7.77F, -0.31F}) {
        for (const float b : {0.7F, 0.123F, 1.01F}) {
          for (std::size_t i = 0; i < excesses.size(); ++i) {
            const float largest = knee + excesses[i];
            ASSERT_EQ(largest - knee, excesses[i]);
            const float d = powers[i];
            const float room = peak - knee;
            const float rest = 1.0F - knee;
            const auto scaled = [&](float denominator) {
              const float mapped = d * room / denominator + knee;
              return std::min(std::max(mapped / largest, 0.0F), 1.0F) * largest;
            };
            const float expected = scaled((d * b + a + room) - rest + 1e-15F);
            std::array<float, 4> pixel = {largest, 0.0F, 0.0F, 1.0F};
            ToneMapCar(pixel.data(), knee, a, b, peak);
            ASSERT_EQ(Bits(pixel[0]), Bits(expected))
                << knee << ' ' << peak << ' ' << a << ' ' << b;
            const std::array<float, 4> others = {scaled(d * b + (a + room) - rest + 1e-15F),
                                                 scaled(d * b + a + (room - rest) + 1e-15F),
                                                 scaled(d * b + (a + (room - rest)) + 1e-15F),
                                                 scaled(a + (d * b + room) - rest + 1e-15F)};
            for (std::size_t k = 0; k < others.size(); ++k) {
              otherOrders[k] += Bits(others[k]) != Bits(expected) ? 1 : 0;
            }
          }
        }
      }
    }
  }
  for (const int count : otherOrders) EXPECT_GT(count, 5);
}

TEST(CurveOrder, Bt2446AMultipliesBeforeItDividesAndScalesItsResultLast) {
  int quotientFirst = 0;
  int scaledEarly = 0;
  for (const float w : {0.3F, 0.77F, 0.1F, 0.55F, 0.91F}) {
    for (const float largest : {3.1F, 0.7F, 11.3F, 1.9F, 0.63F, 5.7F}) {
      for (const float scale : {0.4926108F, 1.37F}) {
        std::array<float, 3> pixel = {0.37F, largest, 0.59F};
        const std::array<float, 3> before = pixel;
        const std::array<float, 3> y = {0.31F, 0.83F, 0.47F};
        BlendBt2446A(pixel.data(), y.data(), scale, w);
        const float k = (w * 0.83F) / largest;
        const float otherK = w * (0.83F / largest);
        for (std::size_t c = 0; c < 3; ++c) {
          const float own = (1.0F - w) * y[c];
          EXPECT_EQ(Bits(pixel[c]), Bits((own + k * before[c]) * scale));
          quotientFirst += Bits(pixel[c]) != Bits((own + otherK * before[c]) * scale) ? 1 : 0;
          scaledEarly += Bits(pixel[c]) != Bits(own * scale + k * before[c] * scale) ? 1 : 0;
        }
      }
    }
  }
  EXPECT_GT(quotientFirst, 3);
  EXPECT_GT(scaledEarly, 3);
}

TEST(CurveOrder, Bt2446ATakes6302TenThousandthsToTheLastBit) {
  // 0.6302 in single precision. The result lies in the constant's own binade: a step of the one is
  // a step of the other.
  constexpr float kConstant = 0x1.42a994p-1F;
  static_assert(kConstant == 0.6302F);
  const float rho = 33.0F;
  const float unit = Logarithm(rho);
  int tried = 0;
  for (float place = 0.76F; place < 0.99F; place += 0.0137F) {
    const float logarithm = place * unit;
    const float e = logarithm / unit;
    const float expected = 2.7811F * e - 1.151F * e * e - kConstant;
    ASSERT_TRUE(expected > 0.5F && expected < 1.0F);
    EXPECT_EQ(Bits(Bt2446ACurve(1.0F, logarithm, rho)), Bits(expected)) << e;
    const float next = 2.7811F * e - 1.151F * e * e - std::nextafter(kConstant, 1.0F);
    tried += Bits(next) != Bits(expected) ? 1 : 0;
  }
  EXPECT_GT(tried, 10);
}

TEST(CurveOrder, TheEetfTakesItsFourthPowerInDoublePrecision) {
  // Below the knee, with a lift of black: the value is the difference's power in double precision,
  // rounded once.
  const EetfParams p = {
      .sourceBlack = 0.0F, .sourceRange = 1.0F, .kneeStart = 2.0F, .minLum = 0.3F, .maxLum = 0.9F};
  int told = 0;
  for (float e = 1e-4F; e < 1.0F; e *= 1.07F) {
    const double rest = 1.0 - static_cast<double>(e);
    const auto expected = static_cast<float>(
        rest * rest * (rest * rest) * static_cast<double>(0.3F) + static_cast<double>(e));
    EXPECT_EQ(Bits(Eetf(e, p)), Bits(expected)) << e;
    const auto single = static_cast<double>(1.0F - e);
    const auto other = static_cast<float>(
        single * single * (single * single) * static_cast<double>(0.3F) + static_cast<double>(e));
    told += Bits(other) != Bits(expected) ? 1 : 0;
  }
  EXPECT_GT(told, 5) << "a difference in single precision would give other bits";
}

TEST(CurveOrder, TheHuePreservingShareHasItsTinyTermInBothPlaces) {
  EXPECT_EQ(Bits(ShareOfExcess(0.25F, 0.25F, 1.0F)), Bits(1e-15F)) << "above the line";
  EXPECT_EQ(Bits(ShareOfExcess(0.0F, 0.0F, 1e-15F)), Bits(1e-15F / (1e-15F + 1e-15F)));
  EXPECT_EQ(Bits(ShareOfExcess(1.0F, 0.5F, 1e-15F)), Bits(0.5F / (1e-15F + 1e-15F))) << "below it";
}

TEST(CurveOrder, TheHuePreservingRatioIsClampedToTheUnit) {
  // A knee above the destination's peak: just above it the curve's ratio exceeds 1, further up it
  // is negative.
  const Quillon::SupportVector params = {5.0F, 0.9F, 0.5F};
  const auto map = [&](float grey) {
    return tonemap::Map<Quillon::HuePreservationToneMap>({grey, grey, grey, 1.0F}, params, {});
  };
  ASSERT_GT(SoftKnee(1.0F, 0.9F, 5.0F, 0.5F), 1.0F);
  ExpectBits(map(1.0F), {1.0F, 1.0F, 1.0F, 1.0F});
  ASSERT_LT(SoftKnee(1.4F, 0.9F, 5.0F, 0.5F), 0.0F);
  ExpectBits(map(1.4F), {0.0F, 0.0F, 0.0F, 1.0F});
}

}  // namespace
