#include <algorithm>
#include <bit>
#include <numeric>

#include "cpu/QuillonImpl.h"
#include "tests/cpu/Gain.h"

namespace {

using scripted::Lines;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

/// What one band task touched: first float and number of pixels.
struct Touched {
  std::ptrdiff_t first;
  std::ptrdiff_t pixels;
  friend bool operator==(const Touched&, const Touched&) = default;
};

void PrintTo(const Touched& touched, std::ostream* out) {
  *out << touched.pixels << " pixels from float " << touched.first;
}

class Bands : public scripted::HostTest {
 protected:
  /// Runs a frame of ones in bands and says what each task touched, by its place in the queue.
  std::vector<Touched> Run(int height, int width, int stride) {
    cpu::LeaveOnlyTheGain(host);
    memory_.assign(static_cast<std::size_t>(std::max(height, 0)) * stride + 64, 1.0F);
    std::vector<Touched> bands;
    host.results.afterTask = [&](int index) {
      bands.resize(std::max(bands.size(), static_cast<std::size_t>(index) + 1));
      bands[static_cast<std::size_t>(index)] = CollectTouched();
    };
    const auto record = scripted::MakeRecord(5);
    const scripted::RecordWatch watch(record);
    EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(nullptr, memory_.data(), height,
                                                              width, -1, stride, record),
              0);
    return bands;
  }

  Lines Threads() { return host.CallsTo({"orvcore::threads", "SubExecutor", "AsyncExecutor"}); }

  std::vector<float> memory_;

 private:
  /// The pixels that were doubled; set back to ones.
  Touched CollectTouched() {
    const auto doubled = std::find(memory_.begin(), memory_.end(), 2.0F);
    Touched touched{doubled - memory_.begin(), 0};
    for (auto pixel = doubled; pixel != memory_.end() && *pixel == 2.0F; pixel += 4) {
      EXPECT_THAT(std::vector<float>(pixel, pixel + 4), ElementsAre(2.0F, 2.0F, 2.0F, 1.0F));
      std::fill_n(pixel, 3, 1.0F);
      ++touched.pixels;
    }
    EXPECT_EQ(std::count(memory_.begin(), memory_.end(), 2.0F), 0) << "a band is not in one piece";
    return touched;
  }
};

TEST_F(Bands, AreOneRowEachUpTo16Rows) {
  for (int height = 1; height <= 16; ++height) {
    SCOPED_TRACE(height);
    const std::vector<Touched> bands = Run(height, 3, 12);
    ASSERT_EQ(bands.size(), static_cast<std::size_t>(height));
    for (int band = 0; band < height; ++band) {
      EXPECT_EQ(bands[static_cast<std::size_t>(band)], (Touched{band * 12L, 3}));
    }
  }
}

TEST_F(Bands, GiveTheLastOneTheRemainder) {
  struct Case {
    int height;
    int rows;
    int lastRows;
  };
  for (const Case& c :
       {Case{17, 1, 2}, {31, 1, 16}, {32, 2, 2}, {33, 2, 3}, {47, 2, 17}, {100, 6, 10}}) {
    SCOPED_TRACE(c.height);
    const std::vector<Touched> bands = Run(c.height, 2, 8);
    ASSERT_EQ(bands.size(), 16U);
    for (int band = 0; band < 15; ++band) {
      EXPECT_EQ(bands[static_cast<std::size_t>(band)], (Touched{8L * band * c.rows, 2L * c.rows}));
    }
    EXPECT_EQ(bands[15], (Touched{15L * c.rows * 8L, c.lastRows * 2L}));
  }
}

TEST_F(Bands, StartAtTheRightRowAndGoOnPackedWhenRowsArePadded) {
  const std::vector<Touched> bands = Run(100, 2, 20);
  ASSERT_EQ(bands.size(), 16U);
  for (int band = 0; band < 15; ++band) {
    EXPECT_EQ(bands[static_cast<std::size_t>(band)], (Touched{band * 6L * 20L, 12}));
  }
  EXPECT_EQ(bands[15], (Touched{15L * 6L * 20L, 20}));
}

TEST_F(Bands, AreQueuedInOrderWithPriority0AndThenWaitedFor) {
  Run(3, 1, 4);
  EXPECT_THAT(Threads(), ElementsAre("orvcore::threads::CreateCPUBoundExecutor()",
                                     "orvcore::threads::CreateSubExecutor(executor, 3)",
                                     "AsyncExecutor.Release()", "SubExecutor.Queue(task, 0)",
                                     "SubExecutor.Queue(task, 0)", "SubExecutor.Queue(task, 0)",
                                     "SubExecutor.WaitForAll()", "SubExecutor.Release()"));
}

TEST_F(Bands, DoNotDependOnTheOrderInWhichTheyRun) {
  host.results.taskOrder = scripted::TaskOrder::Reversed;
  const std::vector<Touched> bands = Run(17, 2, 8);
  ASSERT_EQ(bands.size(), 16U);
  for (int band = 0; band < 15; ++band) {
    EXPECT_EQ(bands[static_cast<std::size_t>(band)], (Touched{band * 8L, 2}));
  }
  EXPECT_EQ(bands[15], (Touched{120, 4}));
}

TEST_F(Bands, AreNoneForHeight0ButTheWaitIsMade) {
  EXPECT_THAT(Run(0, 3, 12), IsEmpty());
  EXPECT_THAT(Threads(), ElementsAre("orvcore::threads::CreateCPUBoundExecutor()",
                                     "orvcore::threads::CreateSubExecutor(executor, 0)",
                                     "AsyncExecutor.Release()", "SubExecutor.WaitForAll()",
                                     "SubExecutor.Release()"));
}

TEST_F(Bands, AreNoneForANegativeHeight) {
  EXPECT_THAT(Run(-5, 3, 12), IsEmpty());
  EXPECT_THAT(Threads(), ElementsAre("orvcore::threads::CreateCPUBoundExecutor()",
                                     "orvcore::threads::CreateSubExecutor(executor, -5)",
                                     "AsyncExecutor.Release()", "SubExecutor.WaitForAll()",
                                     "SubExecutor.Release()"));
}

TEST_F(Bands, TouchNothingForAWidthThatIsNotPositive) {
  for (const int width : {0, -1}) {
    for (const Touched& band : Run(2, width, 8)) EXPECT_EQ(band.pixels, 0);
    EXPECT_THAT(memory_, testing::Each(1.0F));
  }
}

TEST_F(Bands, AreNeitherQueuedNorWaitedForWhenNoStepApplies) {
  std::vector<float> pixels(16, 1.0F);
  const auto record = scripted::MakeRecord(5, 1);
  EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(pixels.data(), pixels.data(), 2, 2, 8,
                                                            8, record),
            0);
  EXPECT_THAT(Threads(), ElementsAre("orvcore::threads::CreateCPUBoundExecutor()",
                                     "orvcore::threads::CreateSubExecutor(executor, 2)",
                                     "AsyncExecutor.Release()", "SubExecutor.Release()"));
  EXPECT_THAT(pixels, testing::Each(1.0F));
}

TEST_F(Bands, OnlyLookAtTheDestination) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> source(16, 5.0F);
  std::vector<float> destination(16, 1.0F);
  const auto record = scripted::MakeRecord(5);
  EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(source.data(), destination.data(), 2, 2,
                                                            -7, 8, record),
            0);
  EXPECT_THAT(source, testing::Each(5.0F));
  EXPECT_EQ(destination[0], 2.0F);
}

TEST_F(Bands, CanBeMadeWithoutAnExecutor) {
  host.FailWithNothing("orvcore::threads::CreateCPUBoundExecutor");
  EXPECT_EQ(Run(2, 1, 4).size(), 2U);
}

TEST_F(Bands, RunInlineInOnePieceWithoutASubExecutor) {
  host.results.hasSubExecutor = false;
  Run(17, 2, 12);
  EXPECT_THAT(Threads(), ElementsAre("orvcore::threads::CreateCPUBoundExecutor()",
                                     "orvcore::threads::CreateSubExecutor(executor, 16)",
                                     "AsyncExecutor.Release()"));
  // One packed walk from the first pixel: 17 rows of 2 pixels, and nothing past them.
  for (std::size_t place = 0; place < memory_.size(); ++place) {
    const bool color = place % 4 != 3;
    ASSERT_EQ(memory_[place], place < 136 && color ? 2.0F : 1.0F) << "float " << place;
  }
}

/// Changes the gain in the caller's own record once the engine has made its working copy.
class BandsAndTheRecord : public Bands {
 protected:
  std::vector<float> RunWithGainChangedBeforeTheRows() {
    cpu::LeaveOnlyTheGain(host);
    auto record = scripted::MakeRecord(5);
    host.results.beforeSubExecutor = [&] { record.toneMapSettings.controls.peakGain = 3.0F; };
    std::vector<float> pixel(4, 1.0F);
    EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(pixel.data(), pixel.data(), 1, 1, 4,
                                                              4, record),
              0);
    return pixel;
  }
};

TEST_F(BandsAndTheRecord, TasksReadTheWorkingCopy) {
  EXPECT_THAT(RunWithGainChangedBeforeTheRows(), ElementsAre(2.0F, 2.0F, 2.0F, 1.0F));
}

TEST_F(BandsAndTheRecord, TheInlineRunReadsTheCallersOwnRecord) {
  host.results.hasSubExecutor = false;
  EXPECT_THAT(RunWithGainChangedBeforeTheRows(), ElementsAre(3.0F, 3.0F, 3.0F, 1.0F));
}

TEST_F(Bands, LetExceptionsOfAQueueOrAWaitPassAndDropWhatWasQueued) {
  for (const char* operation : {"SubExecutor.Queue", "SubExecutor.WaitForAll"}) {
    host.Reset();
    cpu::LeaveOnlyTheGain(host);
    std::vector<float> pixels(16, 1.0F);
    const auto record = scripted::MakeRecord(5);
    host.FailWithException(operation);
    EXPECT_THROW(Quillon::QuillonImpl().GenerateGamutMappedFrame(pixels.data(), pixels.data(), 2, 2,
                                                                 8, 8, record),
                 scripted::HostException);
    EXPECT_THAT(pixels, testing::Each(1.0F));
  }
}

constexpr int kDegenerate = static_cast<int>(0xA00F000FU);

class BandsOfAnyShape : public scripted::HostTest {
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

TEST_F(BandsOfAnyShape, AreOneOfOneRowAtHeight1) { EXPECT_THAT(RowsOfBands(1), ElementsAre(1)); }

TEST_F(BandsOfAnyShape, AreFifteenOfOneRowAtHeight15) {
  EXPECT_EQ(RowsOfBands(15), std::vector<long>(15, 1));
}

TEST_F(BandsOfAnyShape, AreSixteenOfOneRowAtHeight16) {
  EXPECT_EQ(RowsOfBands(16), std::vector<long>(16, 1));
}

TEST_F(BandsOfAnyShape, GiveTheLastTwoRowsAtHeight17) {
  std::vector<long> expected(16, 1);
  expected.back() = 2;
  EXPECT_EQ(RowsOfBands(17), expected);
}

TEST_F(BandsOfAnyShape, GiveTheLastSixteenRowsAtHeight31) {
  std::vector<long> expected(16, 1);
  expected.back() = 16;
  EXPECT_EQ(RowsOfBands(31), expected);
}

TEST_F(BandsOfAnyShape, AreSixteenOfTwoRowsAtHeight32) {
  EXPECT_EQ(RowsOfBands(32), std::vector<long>(16, 2));
}

TEST_F(BandsOfAnyShape, GiveTheLastTenRowsAtHeight100) {
  std::vector<long> expected(16, 6);
  expected.back() = 10;
  EXPECT_EQ(RowsOfBands(100), expected);
}

TEST_F(BandsOfAnyShape, GiveTheLastAtMostFifteenRowsMoreThanTheOthers) {
  std::vector<long> expected(16, 67);
  expected.back() = 82;
  EXPECT_EQ(RowsOfBands(1087), expected);
}

TEST_F(BandsOfAnyShape, AllStartAtTheFirstPixelWithAStrideOf0) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(12, 1.0F);
  EXPECT_EQ(Run(pixels.data(), 3, 0), 0);
  EXPECT_THAT(pixels,
              ElementsAre(8.0F, 8.0F, 8.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F));
}

TEST_F(BandsOfAnyShape, GoUpwardsWithANegativeStride) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(16, 1.0F);
  EXPECT_EQ(Run(pixels.data() + 8, 3, -4), 0);
  EXPECT_THAT(pixels, ElementsAre(2.0F, 2.0F, 2.0F, 1.0F, 2.0F, 2.0F, 2.0F, 1.0F, 2.0F, 2.0F, 2.0F,
                                  1.0F, 1.0F, 1.0F, 1.0F, 1.0F));
}

TEST_F(BandsOfAnyShape, KeepTheBitsOfAlpha) {
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

TEST_F(BandsOfAnyShape, AreNoneAtHeight0ButWaitedFor) {
  cpu::LeaveOnlyTheGain(host);
  std::vector<float> pixels(4, 1.0F);
  EXPECT_EQ(Run(pixels.data(), 0, 4), 0);
  EXPECT_THAT(pixels, Each(1.0F));
  EXPECT_TRUE(host.CallsTo({"SubExecutor.Queue"}).empty());
  EXPECT_EQ(host.CallsTo({"SubExecutor.WaitForAll"}).size(), 1U);
}

TEST_F(BandsOfAnyShape, AreNotQueuedWhenNoStepAppliesThoughAnExecutorIsMade) {
  std::vector<float> pixels(8, 1.0F);
  EXPECT_EQ(Run(pixels.data(), 2, 4), 0);
  EXPECT_THAT(pixels, Each(1.0F));
  EXPECT_EQ(host.CallsTo({"orvcore::threads::CreateSubExecutor"}).size(), 1U);
  EXPECT_TRUE(host.CallsTo({"SubExecutor.Queue", "SubExecutor.WaitForAll"}).empty());
}

TEST_F(BandsOfAnyShape, AreNotMadeAfterARefusal) {
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
