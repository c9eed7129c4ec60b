#include <cmath>
#include <limits>

#include "cpu/QuillonImpl.h"
#include "tests/cpu/Gain.h"

namespace {

using orvmediatypes::color::ToneMapAlgorithmType;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kDegenerate = static_cast<int>(0xA00F000FU);
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

const std::vector<float> kPixel = {-1.0F, 0.5F, 1.0F, 0.25F};

/// PQ code values that the conversions of source and destination deliver.
struct Signals {
  float sourceBlack = 0.0F;
  float sourcePeak = 1.0F;
  float destinationBlack = 0.0F;
  float destinationPeak = 0.75F;
};

class Bt2390Steps : public scripted::HostTest {
 protected:
  int Run() {
    pixel = kPixel;
    const scripted::RecordWatch watch(record);
    return Quillon::QuillonImpl().GenerateGamutMappedFrame(pixel.data(), pixel.data(), 1, 1, 4, 4,
                                                           record);
  }

  /// Runs a BT.2390 curve between these signals.
  int RunITU2390(int algorithm, const Signals& signals) {
    host.Reset();
    record.toneMapSettings.algorithmType = static_cast<ToneMapAlgorithmType>(algorithm);
    host.results.toneMappingApplicable = true;
    host.results.convertFrame = [=, calls = 0](const scripted::Conversion& conversion) mutable {
      if (conversion.width != 2) return;
      const bool source = ++calls == 1;
      conversion.destination[0] = source ? signals.sourceBlack : signals.destinationBlack;
      conversion.destination[4] = source ? signals.sourcePeak : signals.destinationPeak;
    };
    return Run();
  }

  void ExpectUntouched() {
    EXPECT_EQ(pixel, kPixel);
    EXPECT_THAT(host.CallsTo({"orvcore::threads"}), IsEmpty());
    EXPECT_THAT(host.Messages(), IsEmpty());
  }

  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5, 1);
  std::vector<float> pixel;
};

TEST_F(Bt2390Steps, AreRefusedWhenTheKneeStartsAtExactly1) {
  for (const int algorithm : {2, 3}) {
    EXPECT_EQ(RunITU2390(algorithm, {.sourcePeak = 0.5F, .destinationPeak = 0.5F}), kDegenerate);
    ExpectUntouched();
  }
}

TEST_F(Bt2390Steps, AreRefusedFromPQToPQWithoutMetadata) {
  // Full scale on both sides: the knee starts at 1.
  record.toneMapSettings.sourceColorSpace = orvmediatypes::color::ColorSpace(scripted::kPQ);
  record.toneMapSettings.destinationColorSpace = orvmediatypes::color::ColorSpace(scripted::kPQ);
  EXPECT_EQ(RunITU2390(2, {}), kDegenerate);
  ExpectUntouched();
}

TEST_F(Bt2390Steps, RunWhenTheKneeStartsOneStepBelow1) {
  const float justBelow = std::nextafter(1.0F, 0.0F);
  for (const int algorithm : {2, 3}) {
    EXPECT_EQ(RunITU2390(algorithm, {.destinationPeak = justBelow}), 0);
    EXPECT_NE(pixel, kPixel);
  }
}

TEST_F(Bt2390Steps, RunOnlyTheDesaturationWhenTheKneeStartsAbove1) {
  // A destination peak of twice the source's: what is left of the curve is the gain of 2.
  for (const int algorithm : {2, 3}) {
    EXPECT_EQ(RunITU2390(algorithm, {.sourcePeak = 0.5F, .destinationPeak = 1.0F}), 0);
    EXPECT_THAT(pixel, ElementsAre(-2.0F, 1.0F, 2.0F, 0.25F));
  }
}

TEST_F(Bt2390Steps, AreRefusedWhenTheRangeLiesBelow1e15th) {
  for (const int algorithm : {2, 3}) {
    for (const float range : {std::nextafter(1e-15F, 0.0F), 0.0F, -0.5F}) {
      EXPECT_EQ(RunITU2390(algorithm, {.sourcePeak = range}), kDegenerate) << range;
      ExpectUntouched();
    }
  }
}

TEST_F(Bt2390Steps, RunWhenTheRangeIs1e15th) {
  for (const int algorithm : {2, 3}) EXPECT_EQ(RunITU2390(algorithm, {.sourcePeak = 1e-15F}), 0);
}

TEST_F(Bt2390Steps, RunWhenTheRangeIsNaN) {
  for (const int algorithm : {2, 3}) {
    EXPECT_EQ(RunITU2390(algorithm, {.sourcePeak = kNaN}), 0);
    EXPECT_EQ(pixel[3], 0.25F);
  }
}

}  // namespace
