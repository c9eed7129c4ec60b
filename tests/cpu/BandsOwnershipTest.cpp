#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <optional>

#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"

namespace {

using testing::IsEmpty;

constexpr int kUnsupported = static_cast<int>(0xA00F000CU);
constexpr int kDegenerate = static_cast<int>(0xA00F000FU);

std::vector<std::uint32_t> BitsOf(const std::vector<float>& pixels) {
  std::vector<std::uint32_t> bits;
  for (const float value : pixels) bits.push_back(std::bit_cast<std::uint32_t>(value));
  return bits;
}

class BandsOwnership : public scripted::HostTest {
 protected:
  /// Scripts the host for these algorithms; with `destinationPeak`, a PQ code value.
  void Script(int toneMap, int gamut, float destinationPeak = 0.5F) {
    host.results.toneMappingApplicable = toneMap != 0;
    host.results.gamutCompressionApplicable = gamut != 0;
    host.results.convertFrame = [=, calls = 0](const scripted::Conversion& c) mutable {
      // The limit of Reinhard. The peak stays the record's, which single bands read.
      if (c.width == 1 && c.source[0] == 1.0F) c.destination[0] = 2.0F;
      if (c.width == 2) c.destination[4] = ++calls == 1 ? 0.75F : destinationPeak;
    };
  }

  int Run(std::vector<float>& pixels, int height, int width,
          const PX::GamutMappingUtils::GamutMappingSettings& record) {
    return Quillon::QuillonImpl().GenerateGamutMappedFrame(pixels.data(), pixels.data(), height,
                                                           width, 4 * width, 4 * width, record);
  }

  static std::vector<float> Picture(int height, int width) {
    std::vector<float> pixels;
    for (int i = 0; i < height * width * 4; ++i) {
      pixels.push_back(0.4F + 0.9F * std::sin(0.7F * static_cast<float>(i)));
    }
    return pixels;
  }
};

TEST_F(BandsOwnership, TasksOwnAllThatTheyUse) {
  for (const int toneMap : {2, 3, 4, 5, 6}) {
    for (const int gamut : {1, 2}) {
      SCOPED_TRACE(std::to_string(toneMap) + ", " + std::to_string(gamut));
      host.Reset();
      Script(toneMap, gamut);
      std::vector<float> expected = Picture(20, 3);
      ASSERT_EQ(Run(expected, 20, 3, scripted::MakeRecord(toneMap, gamut)), 0);

      // Tasks that run when the call and its record are gone, and other calls have been made.
      host.Reset();
      Script(toneMap, gamut);
      std::vector<std::function<void()>> tasks;
      host.results.takeTask = [&](std::function<void()> task) { tasks.push_back(std::move(task)); };
      std::vector<float> pixels = Picture(20, 3);
      auto record = std::make_optional(scripted::MakeRecord(toneMap, gamut));
      ASSERT_EQ(Run(pixels, 20, 3, *record), 0);
      record.reset();
      EXPECT_EQ(tasks.size(), 16U);
      EXPECT_EQ(BitsOf(pixels), BitsOf(Picture(20, 3)));
      host.results.takeTask = {};
      for (const int other : {2, 3, 4, 5, 6}) {
        Script(other, 3 - gamut, 0.375F);
        auto otherRecord = scripted::MakeRecord(other, 3 - gamut);
        otherRecord.toneMapSettings.controls.peakGain = 7.0F;
        std::vector<float> scratch = Picture(7, 2);
        ASSERT_EQ(Run(scratch, 7, 2, otherRecord), 0);
      }
      for (const std::function<void()>& task : tasks) task();
      EXPECT_EQ(BitsOf(pixels), BitsOf(expected));
    }
  }
}

TEST_F(BandsOwnership, PooledAndSingleBandsAgreeForEveryHeightTo40) {
  for (const int toneMap : {2, 3, 4, 5, 6}) {
    for (int height = 1; height <= 40; ++height) {
      std::vector<std::vector<std::uint32_t>> results;
      for (const bool pooled : {true, false}) {
        host.Reset();
        Script(toneMap, height % 3);
        host.results.hasSubExecutor = pooled;
        std::vector<float> pixels = Picture(height, 5);
        ASSERT_EQ(Run(pixels, height, 5, scripted::MakeRecord(toneMap, height % 3)), 0);
        results.push_back(BitsOf(pixels));
        EXPECT_NE(results.back(), BitsOf(Picture(height, 5)));
      }
      ASSERT_EQ(results[0], results[1]) << toneMap << ", " << height << " rows";
    }
  }
}

TEST_F(BandsOwnership, RunInTheDefaultFloatingPointModeWhateverTheirThreads) {
  for (const int toneMap : {2, 3, 4, 5, 6}) {
    std::vector<std::vector<std::uint32_t>> results;
    for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_TOWARDZERO}) {
      host.Reset();
      Script(toneMap, 1);
      host.results.beforeTask = [&](int) { std::fesetround(rounding); };
      host.results.afterTask = [&](int) {
        const volatile float three = 3.0F;
        const volatile float third = 1.0F / three;
        EXPECT_EQ(third > 1.0 / 3.0, rounding != FE_TOWARDZERO) << "the thread's own mode is back";
        std::fesetround(FE_TONEAREST);
      };
      std::vector<float> pixels = Picture(20, 3);
      ASSERT_EQ(Run(pixels, 20, 3, scripted::MakeRecord(toneMap, 1)), 0);
      results.push_back(BitsOf(pixels));
    }
    EXPECT_EQ(results[1], results[0]) << toneMap;
    EXPECT_EQ(results[2], results[0]) << toneMap;
  }
}

TEST_F(BandsOwnership, CompressNoGamutWhenTheToneMapIsRefused) {
  for (const int gamut : {1, 2}) {
    for (const int toneMap : {2, 3, 7}) {
      host.Reset();
      Script(toneMap, gamut, 0.75F);  // peaks that are equal: BT.2390 is refused
      std::vector<float> pixels = Picture(20, 3);
      EXPECT_EQ(Run(pixels, 20, 3, scripted::MakeRecord(toneMap, gamut)),
                toneMap == 7 ? kUnsupported : kDegenerate);
      EXPECT_EQ(BitsOf(pixels), BitsOf(Picture(20, 3)));
      EXPECT_THAT(host.CallsTo({"orvcore::threads", "SubExecutor"}), IsEmpty());
    }
  }
}

TEST_F(BandsOwnership, CompressTheGamutWhereTheToneMapDoesNotApply) {
  for (const int gamut : {1, 2}) {
    Script(0, gamut);
    std::vector<float> pixels = Picture(20, 3);
    // The tone map's algorithm is not looked at.
    EXPECT_EQ(Run(pixels, 20, 3, scripted::MakeRecord(7, gamut)), 0);
    std::vector<float> expected = Picture(20, 3);
    const Quillon::SupportVector params =
        gamut == 1 ? Quillon::SupportVector{2.0F} : Quillon::SupportVector{0.25F, 0.5F, 0.125F};
    for (std::size_t i = 0; i < expected.size(); i += 4) {
      if (gamut == 1) Quillon::GamutCompressionReinhard{}(&expected[i], params, {});
      if (gamut == 2) Quillon::GamutCompressionDesaturation{}(&expected[i], params, {});
    }
    EXPECT_EQ(BitsOf(pixels), BitsOf(expected));
  }
}

}  // namespace
