// The table of algorithms: complete, and true.

#include <set>
#include <string>
#include <vector>

#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/Algorithms.h"
#include "tonemap/SupportParams.h"

namespace {

using orvmediatypes::color::ToneMapAlgorithmType;
using Quillon::FindToneCurve;
using Quillon::FindToneMapAlgorithm;
using Quillon::kToneCurves;
using Quillon::SupportVector;
using Quillon::ToneCurveFacts;
using testing::ElementsAre;

ToneMapAlgorithmType AlgorithmOf(int value) { return static_cast<ToneMapAlgorithmType>(value); }

std::vector<std::string> IdsOf(int value) {
  std::vector<std::string> ids;
  for (const Quillon::ParamEntry& entry : FindToneCurve(AlgorithmOf(value))->entries) {
    ids.emplace_back(entry.id);
  }
  return ids;
}

class Algorithms : public tonemap::ToneMapTest {
 protected:
  void SetUp() override {
    ToneMapTest::SetUp();
    host.results.convertSignalToLinear = [](const auto&, float signal) { return 4.0F * signal; };
    settings.controls = {.version = 3, .peak = 8.0F, .peakGain = 1.0F, .colorPreservation = 1.0F};
    SetDestinationPeak(600);
  }

  void SetDestinationPeak(int nits) { SetDestination(scripted::Colors(9, 16, nits)); }

  SupportVector ParamsOf(ToneMapAlgorithmType algorithm, float knee = 0.5F) {
    resolved = settings;
    resolved.algorithmType = algorithm;
    resolved.knee = knee;
    SupportVector built;
    Quillon::GetToneMappingSupportParams(resolved, built);
    return built;
  }

  /// A grey of this light, by the curve.
  float Mapped(const ToneCurveFacts& curve, const SupportVector& vector, float light) {
    std::vector<float> pixel(4, light);
    FindToneMapAlgorithm(curve.type)->curve(pixel.data(), vector, resolved);
    return pixel[0];
  }

  PX::ToneMappingUtils::ToneMapSettings resolved;
};

TEST_F(Algorithms, AreThoseFrom2To6InTheirOrder) {
  std::vector<int> values;
  for (const ToneCurveFacts& curve : kToneCurves) {
    values.push_back(static_cast<int>(curve.type));
    EXPECT_EQ(FindToneCurve(curve.type), &curve);
    ASSERT_NE(FindToneMapAlgorithm(curve.type), nullptr);
    EXPECT_EQ(FindToneMapAlgorithm(curve.type)->facts.id, curve.id);
  }
  EXPECT_THAT(values, ElementsAre(2, 3, 4, 5, 6));
  for (const int value : {-1, 0, 1, 7}) {
    EXPECT_EQ(FindToneCurve(AlgorithmOf(value)), nullptr) << value;
    EXPECT_EQ(FindToneMapAlgorithm(AlgorithmOf(value)), nullptr) << value;
  }
}

TEST_F(Algorithms, HaveNamesOfTheirOwnForThemselvesAndEveryEntry) {
  std::set<std::string_view> ids;
  std::set<std::string_view> names;
  std::set<std::string_view> kernels;
  for (const ToneCurveFacts& curve : kToneCurves) {
    EXPECT_TRUE(!curve.id.empty() && ids.insert(curve.id).second) << curve.id;
    EXPECT_TRUE(!curve.name.empty() && names.insert(curve.name).second) << curve.name;
    EXPECT_TRUE(kernels.insert(curve.kernel.name).second) << curve.kernel.name;
    std::set<std::string_view> entryIds;
    std::set<std::string_view> entryNames;
    for (const Quillon::ParamEntry& entry : curve.entries) {
      EXPECT_TRUE(!entry.id.empty() && entryIds.insert(entry.id).second) << entry.id;
      EXPECT_TRUE(!entry.name.empty() && entryNames.insert(entry.name).second) << entry.name;
    }
  }
}

TEST_F(Algorithms, NameAsManyEntriesAsTheirBuilderFills) {
  for (const ToneCurveFacts& curve : kToneCurves) {
    EXPECT_EQ(ParamsOf(curve.type).size(), curve.entries.size()) << curve.id;
    EXPECT_LE(curve.kernel.paramsRead, curve.entries.size()) << curve.id;
    EXPECT_EQ(Quillon::GetToneMappingSupportParamsSize(curve.type), curve.declaredParams);
    EXPECT_GE(curve.declaredParams, static_cast<int>(curve.entries.size())) << curve.id;
  }
}

TEST_F(Algorithms, NameTheEntriesOfTheAutomaticChoice) {
  const auto type = Quillon::AlgorithmOfParams(ToneMapAlgorithmType::Automatic);
  EXPECT_EQ(type, ToneMapAlgorithmType::HuePreservationDesaturation);
  EXPECT_EQ(ParamsOf(ToneMapAlgorithmType::Automatic).size(), FindToneCurve(type)->entries.size());
  for (const ToneCurveFacts& curve : kToneCurves) {
    EXPECT_EQ(Quillon::AlgorithmOfParams(curve.type), curve.type);
  }
}

TEST_F(Algorithms, NameEveryEntryAtItsPlace) {
  const auto bt2390 =
      ElementsAre("sourceBlack", "sourcePeak", "destinationBlack", "destinationPeak",
                  "referenceWhite", "sourceRange", "minLum", "maxLum", "kneeStart",
                  "kneeStartLight", "weightRed", "weightGreen", "weightBlue");
  EXPECT_THAT(IdsOf(2), bt2390);
  EXPECT_THAT(IdsOf(3), bt2390);
  EXPECT_THAT(IdsOf(4), ElementsAre("rhoHdr", "rhoSdr", "inputScale", "outputScale"));
  EXPECT_THAT(IdsOf(5), ElementsAre("sourcePeak", "knee", "destinationPeak"));
  EXPECT_THAT(IdsOf(6), ElementsAre("knee", "a", "b", "destinationPeak", "weightRed", "weightGreen",
                                    "weightBlue"));
}

TEST_F(Algorithms, HaveNamedPlacesThatAreThoseOfTheNames) {
  const auto id = [](const auto& entries, std::size_t place) { return entries.at(place).id; };
  using Bt2390 = Quillon::Bt2390Params;
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kSourceBlack), "sourceBlack");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kSourcePeak), "sourcePeak");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kDestinationBlack), "destinationBlack");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kDestinationPeak), "destinationPeak");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kReferenceWhite), "referenceWhite");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kSourceRange), "sourceRange");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kMinLum), "minLum");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kMaxLum), "maxLum");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kKneeStart), "kneeStart");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kKneeStartLight), "kneeStartLight");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kWeightRed), "weightRed");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kWeightGreen), "weightGreen");
  EXPECT_EQ(id(Bt2390::kEntries, Bt2390::kWeightBlue), "weightBlue");
  using Bt2446A = Quillon::Bt2446AParams;
  EXPECT_EQ(id(Bt2446A::kEntries, Bt2446A::kRhoHdr), "rhoHdr");
  EXPECT_EQ(id(Bt2446A::kEntries, Bt2446A::kRhoSdr), "rhoSdr");
  EXPECT_EQ(id(Bt2446A::kEntries, Bt2446A::kInputScale), "inputScale");
  EXPECT_EQ(id(Bt2446A::kEntries, Bt2446A::kOutputScale), "outputScale");
  using Hue = Quillon::HuePreservationParams;
  EXPECT_EQ(id(Hue::kEntries, Hue::kSourcePeak), "sourcePeak");
  EXPECT_EQ(id(Hue::kEntries, Hue::kKnee), "knee");
  EXPECT_EQ(id(Hue::kEntries, Hue::kDestinationPeak), "destinationPeak");
  using Car = Quillon::CarParams;
  EXPECT_EQ(id(Car::kEntries, Car::kKnee), "knee");
  EXPECT_EQ(id(Car::kEntries, Car::kA), "a");
  EXPECT_EQ(id(Car::kEntries, Car::kB), "b");
  EXPECT_EQ(id(Car::kEntries, Car::kDestinationPeak), "destinationPeak");
  EXPECT_EQ(id(Car::kEntries, Car::kWeightRed), "weightRed");
  EXPECT_EQ(id(Car::kEntries, Car::kWeightGreen), "weightGreen");
  EXPECT_EQ(id(Car::kEntries, Car::kWeightBlue), "weightBlue");
}

TEST_F(Algorithms, HaveAKneeThatTheSettingsMoveWhereTheyNameOne) {
  for (const ToneCurveFacts& curve : kToneCurves) {
    const SupportVector low = ParamsOf(curve.type, 0.25F);
    const SupportVector high = ParamsOf(curve.type, 0.5F);
    if (curve.knee && curve.knee->isSetting) {
      EXPECT_GT(high.at(curve.knee->entry), 1.5F * low.at(curve.knee->entry)) << curve.id;
    } else {
      EXPECT_EQ(high, low) << curve.id;
    }
  }
}

TEST_F(Algorithms, HaveAKneeThatTheDestinationsPeakMoves) {
  for (const ToneCurveFacts& curve : kToneCurves) {
    if (!curve.knee) continue;
    SetDestinationPeak(100);
    const SupportVector dim = ParamsOf(curve.type);
    SetDestinationPeak(600);
    const SupportVector bright = ParamsOf(curve.type);
    EXPECT_GT(bright.at(curve.knee->entry), dim.at(curve.knee->entry)) << curve.id;
  }
}

TEST_F(Algorithms, LeaveLightBelowTheirKneeInLinearLightAlone) {
  int curves = 0;
  for (const ToneCurveFacts& curve : kToneCurves) {
    if (!curve.knee || curve.entries[curve.knee->entry].unit != Quillon::Unit::Linear) continue;
    const SupportVector vector = ParamsOf(curve.type);
    const float knee = vector.at(curve.knee->entry);
    EXPECT_EQ(Mapped(curve, vector, 0.99F * knee), 0.99F * knee) << curve.id;
    EXPECT_LT(Mapped(curve, vector, 1.2F * knee), 1.2F * knee) << curve.id;
    ++curves;
  }
  EXPECT_EQ(curves, 2);
}

}  // namespace
