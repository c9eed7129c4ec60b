#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/CarToneCurve.h"

namespace {

using orvmediatypes::color::ColorSpace;
using testing::ElementsAre;

class CarParams : public tonemap::ToneMapTest {
 protected:
  void Build(float knee) {
    Quillon::GetCARToneCurveSupportParams(settings.destinationColorSpace,
                                          settings.colorManagementSettings, knee, params);
  }

  /// Entry of the tables that the parameters hold.
  static void ExpectEntry(const Quillon::SupportVector& params, std::size_t index) {
    EXPECT_EQ(params.at(1), Quillon::GetCarTables().a[index]);
    EXPECT_EQ(params.at(2), Quillon::GetCarTables().b[index]);
  }
};

TEST_F(CarParams, AreKneePointCoefficientsPeakAndWeights) {
  host.results.convertSignalToLinear = [](const ColorSpace&, float) { return 4.0F; };
  Build(0.5F);
  ASSERT_EQ(params.size(), 7U);
  EXPECT_EQ(params[0], 4.0F * (0.5F * 0.995F + 0.005F));
  ExpectEntry(params, 63);  // floor(0.4975 x 128)
  EXPECT_EQ(params[3], 4.0F);
  EXPECT_THAT(std::vector<float>(params.begin() + 4, params.end()),
              ElementsAre(0.25F, 0.5F, 0.125F));
  EXPECT_THAT(host.Calls(),
              ElementsAre("PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData("
                          "1/1, -1)",
                          "CHR::ConvertSignalToLinearValue(1/1, white 100, 1)",
                          "CHR::GetColorConverterParamsForColorSpace(1/1, true, white 100)"));
}

TEST_F(CarParams, ReadTheFirstEntryForKnee0AndTheLastForKnee1) {
  Build(0.0F);
  EXPECT_EQ(params[0], 0.005F);
  ExpectEntry(params, 0);
  Build(1.0F);
  EXPECT_EQ(params[0], 1.0F);
  ExpectEntry(params, 127);
}

TEST_F(CarParams, TakeATinyKneePointWhenTheKneeIsNotPositive) {
  for (const float knee : {-0.01F, -1.0F, -std::numeric_limits<float>::infinity(), std::nanf("")}) {
    Build(knee);
    EXPECT_EQ(params[0], 1e-15F) << knee;
    ExpectEntry(params, 0);
  }
}

TEST_F(CarParams, StayInsideTheTablesForAnyKnee) {
  for (const float knee :
       {1.5F, 1e30F, std::numeric_limits<float>::max(), std::numeric_limits<float>::infinity()}) {
    Build(knee);
    ExpectEntry(params, 127);
  }
}

TEST_F(CarParams, UseTheRecordsOwnColorManagementInEveryVersion) {
  settings.controls.version = 2;
  SetAlgorithm(6);
  Quillon::GetCARToneCurveSupportParams(settings, params);
  EXPECT_THAT(host.CallsTo({"CHR::Convert", "CHR::GetColor"}),
              testing::Each(testing::HasSubstr("white 100")));
}

TEST(CarTables, AreBuiltOnce) { EXPECT_EQ(&Quillon::GetCarTables(), &Quillon::GetCarTables()); }

TEST(CarTables, FollowTheirFormulaInDoublePrecision) {
  const Quillon::CarTables& tables = Quillon::GetCarTables();
  const double p = std::pow(100.0, 1.25);
  for (std::size_t n = 0; n < Quillon::kCarTableSize; ++n) {
    const double x = std::min(1.0, 0.005 + static_cast<double>(n) * 0.0077734375);
    const double power = std::pow(x, 1.25);
    EXPECT_NEAR(tables.a[n], (power * p * x - power * p) / ((power - p) * x), 1e-5) << n;
    EXPECT_NEAR(tables.b[n], (p * x - power) / ((p - power) * x), 1e-5) << n;
  }
}

}  // namespace
