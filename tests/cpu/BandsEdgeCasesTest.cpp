#include <algorithm>
#include <bit>
#include <numeric>

#include "cpu/QuillonImpl.h"
#include "tests/cpu/Gain.h"

namespace {

using testing::Each;
using testing::ElementsAre;

constexpr int kDegenerate = static_cast<int>(0xA00F000FU);

class BandsEdgeCases : public scripted::HostTest {
 protected:
  /// Runs a frame one pixel wide through the gain of 2, and returns how many rows each band
  /// doubled, in the order of the queue.
  std::vector<long> RowsOfBands(int height) {
    cpu::LeaveOnlyTheGain(host);
    std::vector<float> pixels(static_cast<std::size_t>(height) * 4, 1.0F);
    std::vector<long> doubled;
    host.results.afterTask = [&](int) {
      doubled.push_back(std::count(pixels.begin(), pixels.end(), 2.0F) / 3);
    };
    EXPECT_EQ(Run(pixels.data(), height, 4), 0);
    std::vector<long> rows(doubled);
    std::adjacent_difference(doubled.begin(), doubled.end(), rows.begin());
    return rows;
  }

  static int Run(float* first, int height, int stride) {
    const auto record = scripted::MakeRecord(5);
    return Quillon::QuillonImpl().GenerateGamutMappedFrame(first, first, height, 1, stride, stride,
                                                           record);
  }
};

TEST_F(BandsEdgeCases, AreOneOfOneRowAtHeight1) { EXPECT_THAT(RowsOfBands(1), ElementsAre(1)); }

TEST_F(BandsEdgeCases, AreFifteenOfOneRowAtHeight15) {
  EXPECT_EQ(RowsOfBands(15), std::vector<long>(15, 1));
}

TEST_F(BandsEdgeCases, AreSixteenOfOneRowAtHeight16) {
  EXPECT_EQ(RowsOfBands(16), std::vector<long>(16, 1));
}

TEST_F(BandsEdgeCases, GiveTheLastTwoRowsAtHeight17) {
  std::vector<long> expected(16, 1);
  expected.back() = 2;
  EXPECT_EQ(RowsOfBands(17), expected);
}

TEST_F(BandsEdgeCases, GiveTheLastSixteenRowsAtHeight31) {
  std::vector<long> expected(16, 1);
  expected.back() = 16;
  EXPECT_EQ(RowsOfBands(31), expected);
}

TEST_F(BandsEdgeCases, AreSixteenOfTwoRowsAtHeight32) {
  EXPECT_EQ(RowsOfBands(32), std::vector<long>(16, 2));
}

TEST_F(BandsEdgeCases, GiveTheLastTenRowsAtHeight100) {
  std::vector<long> expected(16, 6);
  expected.back() = 10;
  EXPECT_EQ(RowsOfBands(100), expected);
}

TEST_F(BandsEdgeCases, GiveTheLastAtMostFifteenRowsMoreThanTheOthers) {
  std::vector<long> expected(16, 67);
  expected.back() = 82;
  EXPECT_EQ(RowsOfBands(1087), expected);
}

TEST_F(BandsEdgeCases, AllStartAtTheFirstPixelWithAStrideOf0) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(12, 1.0F);
  EXPECT_EQ(Run(pixels.data(), 3, 0), 0);
  EXPECT_THAT(pixels,
              ElementsAre(8.0F, 8.0F, 8.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F));
}

TEST_F(BandsEdgeCases, GoUpwardsWithANegativeStride) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(16, 1.0F);
  EXPECT_EQ(Run(pixels.data() + 8, 3, -4), 0);
  EXPECT_THAT(pixels, ElementsAre(2.0F, 2.0F, 2.0F, 1.0F, 2.0F, 2.0F, 2.0F, 1.0F, 2.0F, 2.0F, 2.0F,
                                  1.0F, 1.0F, 1.0F, 1.0F, 1.0F));
}

TEST_F(BandsEdgeCases, KeepTheBitsOfAlpha) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(18 * 4, 1.0F);
  const auto alpha = [](std::size_t row) {
    return std::bit_cast<float>(0x7FA00001U + static_cast<std::uint32_t>(row));
  };
  for (std::size_t row = 0; row < 18; ++row) pixels[row * 4 + 3] = alpha(row);
  EXPECT_EQ(Run(pixels.data(), 18, 4), 0);
  for (std::size_t row = 0; row < 18; ++row) {
    EXPECT_EQ(pixels[row * 4], 2.0F);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(pixels[row * 4 + 3]),
              std::bit_cast<std::uint32_t>(alpha(row)));
  }
}

TEST_F(BandsEdgeCases, AreNoneAtHeight0ButWaitedFor) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(4, 1.0F);
  EXPECT_EQ(Run(pixels.data(), 0, 4), 0);
  EXPECT_THAT(pixels, Each(1.0F));
  EXPECT_TRUE(host.CallsTo({"SubExecutor.Queue"}).empty());
  EXPECT_EQ(host.CallsTo({"SubExecutor.WaitForAll"}).size(), 1U);
}

TEST_F(BandsEdgeCases, AreNotQueuedWhenNoStepAppliesThoughAnExecutorIsMade) {
  std::vector<float> pixels(8, 1.0F);
  EXPECT_EQ(Run(pixels.data(), 2, 4), 0);
  EXPECT_THAT(pixels, Each(1.0F));
  EXPECT_EQ(host.CallsTo({"orvcore::threads::CreateSubExecutor"}).size(), 1U);
  EXPECT_TRUE(host.CallsTo({"SubExecutor.Queue", "SubExecutor.WaitForAll"}).empty());
}

TEST_F(BandsEdgeCases, AreNotMadeAfterARefusal) {
  host.results.toneMappingApplicable = true;
  host.results.convertFrame = [](const scripted::Conversion& conversion) {
    if (conversion.width == 2) conversion.destination[4] = 0.5F;  // equal peaks
  };
  std::vector<float> pixels(8, 1.0F);
  const auto record = scripted::MakeRecord(2);
  EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(pixels.data(), pixels.data(), 2, 1, 4,
                                                            4, record),
            kDegenerate);
  EXPECT_TRUE(host.CallsTo({"orvcore::threads"}).empty());
}

}  // namespace
