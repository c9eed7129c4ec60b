// What the builders of support parameters do beyond their numbers, and their numbers to the last
// bit.

#include <algorithm>
#include <cmath>

#include "curves/math.h"
#include "tests/tonemap/CurveTest.h"
#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/Bt2390.h"
#include "tonemap/Bt2446A.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"
#include "tonemap/PeakLuminance.h"
#include "tonemap/SupportParams.h"

namespace {

using orvmediatypes::color::ColorSpace;
using scripted::Recycler;
using tonemap::Bits;

class ParamsPromises : public tonemap::ToneMapTest {
 protected:
  /// Room that a builder leaves in a vector that had none, and the allocations it took.
  std::size_t CapacityOf(int algorithm) {
    SetAlgorithm(algorithm);
    params = Quillon::SupportVector();
    Recycler::Instance().FailAllocation(0);
    Quillon::GetToneMappingSupportParams(settings, params);
    EXPECT_EQ(Recycler::Instance().Allocations(), 1) << "none but the reserve";
    return params.capacity();
  }
};

TEST_F(ParamsPromises, ReserveTheDeclaredLengthAtOnce) {
  EXPECT_EQ(CapacityOf(1), 3U);
  EXPECT_EQ(CapacityOf(2), 13U);
  EXPECT_EQ(CapacityOf(3), 13U);
  EXPECT_EQ(CapacityOf(4), 5U);
  EXPECT_EQ(CapacityOf(5), 3U);
  EXPECT_EQ(CapacityOf(6), 7U);
}

TEST_F(ParamsPromises, TakeAPositiveCodeOfAPeaksConversionForSuccess) {
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[0] = 7.0F; };
  const ColorSpace hlg(scripted::kHLG);
  const ColorSpace sdr(scripted::kSDR);
  for (const int nth : {1, 2}) {
    host.FailWithCode("CHR::ConvertFrame", 1, nth);
    EXPECT_EQ(Quillon::ConvertPeakSignalToLinear(hlg, sdr, {}, 0.5F), 7.0F) << nth;
  }
  host.FailWithCode("CHR::ConvertFrame", 1);
  EXPECT_NEAR(Quillon::GetPeakSignalFromMetaData(ColorSpace(scripted::Colors(1, 1, 1000)), 0.25F),
              tonemap::kPQ1000, 1e-6F)
      << "the PQ code value that was to be converted, not the default";
}

TEST_F(ParamsPromises, TakeAPositiveCodeOfBt2390sConversionsForSuccess) {
  for (const int nth : {1, 2}) {
    host.Reset();
    host.FailWithCode("CHR::ConvertFrame", 1, nth);
    Quillon::GetITU2390SupportParams(settings, params);
    EXPECT_EQ(params.size(), 13U) << nth;
  }
}

TEST_F(ParamsPromises, Bt2446AScalesItsInputByThePowerTimesTheQuotient) {
  int told = 0;
  for (int nits = 1; nits <= 300; ++nits) {
    host.results.peakLuminance = nits;
    settings.controls.peak = 1234.0F;
    Quillon::GetITU2446ASupportParams(settings, params);
    const float power = Power(1234.0F / static_cast<float>(nits), 0.4166F);
    ASSERT_EQ(Bits(params[2]), Bits(power * (100.0F / 1234.0F))) << nits;
    told += Bits(params[2]) != Bits(power * 100.0F / 1234.0F) ? 1 : 0;
  }
  EXPECT_GT(told, 10) << "another order of the three would give other bits";
}

TEST_F(ParamsPromises, Bt2446ADividesTheSdrPeakByTheWhite) {
  int told = 0;
  for (int nits = 1; nits <= 300; ++nits) {
    host.results.peakLuminance = nits;
    Quillon::GetITU2446ASupportParams(settings, params);
    const auto peak = static_cast<float>(nits);
    ASSERT_EQ(Bits(params[3]), Bits(peak / 100.0F));
    told += Bits(peak / 100.0F) != Bits(peak * (1.0F / 100.0F)) ? 1 : 0;
  }
  EXPECT_GT(told, 10) << "a reciprocal would give other bits";
}

TEST_F(ParamsPromises, Bt2446AAsksForTheSdrPeakOnlyWhereItIsExactlyMinus1) {
  host.results.convertSignalToLinear = [](const auto&, float) { return 3.0F; };
  for (const int nits : {-2, 0, 1, -1000}) {
    host.Reset();
    host.results.peakLuminance = nits;
    Quillon::GetITU2446ASupportParams(settings, params);
    EXPECT_EQ(params[3], static_cast<float>(nits) / 100.0F);
    EXPECT_TRUE(host.CallsTo({"CHR::ConvertSignalToLinearValue"}).empty());
  }
  host.Reset();
  host.results.convertSignalToLinear = [](const auto&, float) { return 3.0F; };
  host.results.peakLuminance = -1;
  Quillon::GetITU2446ASupportParams(settings, params);
  EXPECT_EQ(params[3], 3.0F);
}

TEST_F(ParamsPromises, CarsKneeIsTinyWhereItsScaledKneeIsNotAbove0) {
  const auto kneeOf = [&](float knee) {
    Quillon::GetCARToneCurveSupportParams(ColorSpace(scripted::kSDR), {}, knee, params);
    return params[0];
  };
  // The knee whose scaled knee is 0 to the bit, and its neighbours.
  float zero = -0.005F / 0.995F;
  while (zero * 0.995F + 0.005F > 0.0F) zero = std::nextafter(zero, -1.0F);
  while (zero * 0.995F + 0.005F < 0.0F) zero = std::nextafter(zero, 1.0F);
  ASSERT_EQ(zero * 0.995F + 0.005F, 0.0F);
  EXPECT_EQ(kneeOf(zero), 1e-15F);
  float above = zero;
  while (above * 0.995F + 0.005F <= 0.0F) above = std::nextafter(above, 1.0F);
  EXPECT_EQ(kneeOf(above), above * 0.995F + 0.005F);
  EXPECT_EQ(kneeOf(-1.0F), 1e-15F);
}

TEST_F(ParamsPromises, CarsIndexIsRoundedDown) {
  int nextIsNearer = 0;
  for (int i = -100; i <= 1100; ++i) {
    const float knee = static_cast<float>(i) * 0.000997F;
    Quillon::GetCARToneCurveSupportParams(ColorSpace(scripted::kSDR), {}, knee, params);
    const float place = std::max((knee * 0.995F + 0.005F) - 0.005F, 0.0F) * 128.0F;
    const auto index = std::min<std::size_t>(static_cast<std::size_t>(place), 127);
    ASSERT_EQ(params[1], Quillon::GetCarTables().a[index]) << knee;
    ASSERT_EQ(params[2], Quillon::GetCarTables().b[index]) << knee;
    nextIsNearer += place - std::floor(place) > 0.5F ? 1 : 0;
  }
  EXPECT_GT(nextIsNearer, 300);
}

}  // namespace
