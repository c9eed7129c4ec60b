// A program of its own: it counts every allocation.

#include <limits>
#include <string>

#include "cpu/QuillonImpl.h"
#include "tests/cpu/AllocationCount.h"
#include "tests/host/HostTest.h"
#include "tonemap/Bt2390.h"
#include "tonemap/PQTables.h"

namespace {

using scripted::Recycler;

/// PQ code values that the conversions of source and destination deliver.
struct Signals {
  const char* name;
  float sourceBlack;
  float sourcePeak;
  float destinationBlack;
  float destinationPeak;
};

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr Signals kWithTables = {"tables", 0.0F, 1.0F, 0.0F, 0.75F};
constexpr Signals kSignals[] = {kWithTables,
                                {"a black below 0", 0.003F, 0.75F, 0.0F, 0.5F},
                                {"not a number", kNaN, kNaN, kNaN, kNaN},
                                {"a knee above the peak", 0.0F, 0.5F, 0.0F, 1.0F}};

class NoAllocation : public scripted::HostTest {
 protected:
  // What is done once a process.
  NoAllocation() {
    Quillon::WarmPQTables();
    Quillon::HostEncodesAsSt2084();
  }

  /// The heap's and the recycler's allocations.
  struct Counts {
    long heap = AllocationCount();
    int recycler = Recycler::Instance().Allocations();
  };

  /// Maps a frame in 16 bands and expects neither count to move while a band runs.
  void ExpectNoneWhileBandsRun(int toneMap, int gamut, const Signals& signals) {
    SCOPED_TRACE("tone map " + std::to_string(toneMap) + ", gamut compression " +
                 std::to_string(gamut) + ", " + signals.name);
    host.Reset();
    host.results.toneMappingApplicable = toneMap != 0;
    host.results.gamutCompressionApplicable = gamut != 0;
    host.results.convertFrame = [signals, calls = 0](const scripted::Conversion& c) mutable {
      c.destination[0] = 2.0F;
      if (c.width != 2) return;
      const bool source = ++calls == 1;
      c.destination[0] = source ? signals.sourceBlack : signals.destinationBlack;
      c.destination[4] = source ? signals.sourcePeak : signals.destinationPeak;
    };
    Counts before;
    int bands = 0;
    host.results.beforeTask = [&](int) { before = Counts(); };
    host.results.afterTask = [&](int) {
      const Counts after;
      EXPECT_EQ(after.heap, before.heap);
      EXPECT_EQ(after.recycler, before.recycler);
      ++bands;
    };
    const auto record = scripted::MakeRecord(toneMap, gamut);
    std::vector<float> frame(100 * 20 * 4, 0.4F);
    for (std::size_t i = 0; i < frame.size(); i += 7)
      frame[i] = 0.1F + static_cast<float>(i) * 1e-4F;
    EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(frame.data(), frame.data(), 100, 20,
                                                              80, 80, record),
              0);
    EXPECT_EQ(bands, 16);
  }
};

TEST_F(NoAllocation, WhileBandsRunForEveryAlgorithmAndGamutMode) {
  for (const int toneMap : {0, 1, 2, 3, 4, 5, 6}) {
    for (const int gamut : {0, 1, 2}) {
      if (toneMap == 0 && gamut == 0) continue;
      for (const Signals& signals : kSignals) {
        if (&signals != kSignals && toneMap != 2 && toneMap != 3) continue;
        ExpectNoneWhileBandsRun(toneMap, gamut, signals);
      }
    }
  }
}

TEST_F(NoAllocation, HasTheTablesOfBt2390BuiltOnceFromTheRecyclerAndBeforeTheFirstBand) {
  for (const int toneMap : {2, 3}) {
    host.Reset();
    host.results.toneMappingApplicable = true;
    host.results.convertFrame = [peak = 1.25F](const scripted::Conversion& c) mutable {
      if (c.width == 2) c.destination[4] = peak -= 0.25F;
    };
    // 10000 or 8191 floats a table; two of the parameters' vector, with the copy in the tables, and
    // the tables' record.
    const std::size_t tables = toneMap == 2 ? 3 : 2;
    Recycler::Instance().FailAllocation(0);
    int beforeBands = 0;
    const long heapBefore = AllocationCount();
    long heapAtBands = 0;
    host.results.beforeSubExecutor = [&] {
      heapAtBands = AllocationCount();
      beforeBands = Recycler::Instance().Allocations();
    };
    const scripted::Inventory before = scripted::TakeInventory();
    scripted::Inventory atBands;
    host.results.beforeTask = [&](int band) {
      if (band == 0) atBands = scripted::TakeInventory();
    };
    const auto record = scripted::MakeRecord(toneMap);
    std::vector<float> pixel(4, 0.5F);
    ASSERT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(pixel.data(), pixel.data(), 1, 1, 4,
                                                              4, record),
              0);
    EXPECT_GT(heapAtBands, heapBefore) << "the counting works";
    EXPECT_EQ(beforeBands, static_cast<int>(tables) + 3);
    EXPECT_EQ(Recycler::Instance().Allocations(), beforeBands + 1) << "the vector that a task owns";
    const long floats = toneMap == 2 ? 2 * 10000 + 8191 : 10000 + 8191;
    const long bytes = atBands.recyclerBytes - before.recyclerBytes;
    EXPECT_GE(bytes, 4 * floats);
    EXPECT_LT(bytes, 4 * floats + 1024);
  }
}

/// The tables of BT.2390 on the maximum that the tests above are about.
TEST_F(NoAllocation, HasTablesOnlyForTheFirstOfTheSignals) {
  for (const Signals& signals : kSignals) {
    const EetfParams curve = MakeEetfParams(signals.sourceBlack, signals.sourcePeak,
                                            signals.destinationBlack, signals.destinationPeak);
    const Quillon::SupportVector params = {signals.sourceBlack,
                                           1.0F,
                                           0.0F,
                                           0.75F,
                                           100.0F,
                                           curve.sourceRange,
                                           curve.minLum,
                                           curve.maxLum,
                                           curve.kneeStart,
                                           10.0F,
                                           0.25F,
                                           0.5F,
                                           0.25F};
    EXPECT_EQ(MakeBt2390Tables(Quillon::Bt2390Form::MaxRGB, params) != nullptr,
              &signals == kSignals)
        << signals.name;
  }
}

}  // namespace
