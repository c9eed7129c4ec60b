#include "base/ResultCodes.h"
#include "cpu/QuillonImpl.h"
#include "tests/cpu/Gain.h"

namespace {

using orvmediatypes::PixelFormat;
using scripted::FrameOf;
using scripted::FrameSetup;
using scripted::MakeFrame;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kInvalid = static_cast<int>(0xA00F000EU);
constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
constexpr PixelFormat kOtherFormat{0x32767579U, 0x00000002U};

class GenerateToneMappedFrame : public scripted::HostTest {
 protected:
  int Run(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination) {
    const auto record = scripted::MakeRecord(5);
    const scripted::RecordWatch watch(record);
    const int result = Quillon::QuillonImpl().GenerateToneMappedFrame(source, record, destination);
    EXPECT_EQ(scripted::StrongCount(source), 1);
    EXPECT_EQ(scripted::StrongCount(destination), 1);
    return result;
  }

  int Run(FrameSetup source, FrameSetup destination) {
    source.name = "source";
    destination.name = "destination";
    const PX::VideoFrameRef from = MakeFrame(std::move(source));
    const PX::VideoFrameRef to = MakeFrame(std::move(destination));
    return Run(from, to);
  }

  void ExpectRefused(int code, FrameSetup source, FrameSetup destination) {
    host.Reset();
    EXPECT_EQ(Run(std::move(source), std::move(destination)), code);
    EXPECT_THAT(host.Messages(), IsEmpty());
    EXPECT_THAT(host.CallsTo({"CHR::", "orvcore::"}), IsEmpty()) << "the engine was entered";
  }
};

TEST_F(GenerateToneMappedFrame, ReadsViewsBoundsRowBytesFormatsAndPixelsInThisOrder) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source"});
  const PX::VideoFrameRef destination = MakeFrame({.name = "destination"});
  EXPECT_EQ(Run(source, destination), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre("source.QueryInterface(KS::IVideoFrameMemoryAccess)",
                  "source.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                  "destination.QueryInterface(KS::IVideoFrameMemoryAccess)",
                  "destination.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                  "source.GetBounds()", "source.GetRowBytes2D()", "destination.GetRowBytes2D()",
                  "source.GetPixelFormat()", "destination.GetPixelFormat()", "source.GetData()",
                  "destination.GetData()", "destination.GetBounds()",
                  "CHR::IsGamutCompressionApplicable(record)", "CHR::IsToneMappingApplicable(copy)",
                  "orvcore::threads::CreateCPUBoundExecutor()",
                  "orvcore::threads::CreateSubExecutor(executor, 2)", "AsyncExecutor.Release()",
                  "SubExecutor.Release()"));
}

TEST_F(GenerateToneMappedFrame, RefusesFormatsThatDifferInEitherWord) {
  ExpectRefused(kInvalid, {}, {.format = {0x61724743U, 0x0008013AU}});
  ExpectRefused(kInvalid, {}, {.format = {0x61724742U, 0x0008013BU}});
  ExpectRefused(kInvalid, {.format = kOtherFormat}, {});
}

TEST_F(GenerateToneMappedFrame, RefusesBoundsThatDifferInAnyValue) {
  for (const orvcore::geom::Bounds other :
       {orvcore::geom::Bounds{1, 0, 2, 2}, {0, 1, 2, 2}, {0, 0, 3, 2}, {0, 0, 2, 3}}) {
    ExpectRefused(kInvalid, {}, {.bounds = other});
  }
}

TEST_F(GenerateToneMappedFrame, RefusesANullPixelPointerOnEitherSide) {
  ExpectRefused(kInvalid, {.nullPixels = true}, {});
  ExpectRefused(kInvalid, {}, {.nullPixels = true});
}

TEST_F(GenerateToneMappedFrame, RefusesACommonFormatOtherThanLinearFloatBGRA) {
  ExpectRefused(kNotSupported, {.format = kOtherFormat}, {.format = kOtherFormat});
}

TEST_F(GenerateToneMappedFrame, LooksAtBoundsAndPixelsBeforeItLooksForTheFormat) {
  ExpectRefused(kInvalid, {.format = kOtherFormat, .nullPixels = true}, {.format = kOtherFormat});
  ExpectRefused(kInvalid, {.format = kOtherFormat},
                {.bounds = {1, 0, 2, 2}, .format = kOtherFormat});
}

TEST_F(GenerateToneMappedFrame, ThrowsWithoutMemoryAccess) {
  EXPECT_THROW(Run({.hasMemory = false}, {}), scripted::NullHandleException);
  EXPECT_THROW(Run({}, {.hasMemory = false}), scripted::NullHandleException);
}

/// First floats of the doubled rows of a frame of one column and three rows.
std::vector<std::size_t> DoubledPlaces(std::vector<float>& pixels) {
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place < pixels.size(); ++place) {
    if (pixels[place] == 2.0F) {
      places.push_back(place);
      place += 2;
    }
  }
  return places;
}

TEST_F(GenerateToneMappedFrame, TakesTheStrideOfPaddedRowsFromTheTwoDimensionalView) {
  cpu::LeaveOnlyTheGain(host);
  const PX::VideoFrameRef source = MakeFrame({.name = "s", .bounds = {0, 0, 1, 3}});
  const PX::VideoFrameRef destination =
      MakeFrame({.name = "d", .bounds = {0, 0, 1, 3}, .rowBytes = 32, .rowBytes2D = 48});
  EXPECT_EQ(Run(source, destination), 0);
  EXPECT_THAT(DoubledPlaces(FrameOf(destination).Pixels()), ElementsAre(0U, 12U, 24U));
}

TEST_F(GenerateToneMappedFrame, TakesTheStrideFromMemoryAccessWithoutATwoDimensionalView) {
  cpu::LeaveOnlyTheGain(host);
  const PX::VideoFrameRef source = MakeFrame({.name = "s", .bounds = {0, 0, 1, 3}});
  const PX::VideoFrameRef destination = MakeFrame(
      {.name = "d", .bounds = {0, 0, 1, 3}, .rowBytes = 32, .rowBytes2D = 48, .has2D = false});
  EXPECT_EQ(Run(source, destination), 0);
  EXPECT_THAT(DoubledPlaces(FrameOf(destination).Pixels()), ElementsAre(0U, 8U, 16U));
}

TEST_F(GenerateToneMappedFrame, DropsTheRemainderOfRowBytesThatAreNoWholeFloats) {
  cpu::LeaveOnlyTheGain(host);
  const PX::VideoFrameRef source = MakeFrame({.name = "s", .bounds = {0, 0, 1, 3}});
  const PX::VideoFrameRef destination =
      MakeFrame({.name = "d", .bounds = {0, 0, 1, 3}, .rowBytes = 39});
  EXPECT_EQ(Run(source, destination), 0);
  EXPECT_THAT(DoubledPlaces(FrameOf(destination).Pixels()), ElementsAre(0U, 9U, 18U));
}

TEST_F(GenerateToneMappedFrame, PassesTheEnginesResultOnWithoutAMessage) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  const auto record = scripted::MakeRecord(5, 9);
  host.results.gamutCompressionApplicable = true;
  host.FailWithNothing("orvcore::debug::TraceEnabled");
  host.results.traceChangeCount = 77;
  EXPECT_EQ(Quillon::QuillonImpl().GenerateToneMappedFrame(frame, record, frame), kNotSupported);
  EXPECT_THAT(host.Messages(), IsEmpty());
}

TEST_F(GenerateToneMappedFrame, AcceptsAFrameWithoutRowsOrColumns) {
  cpu::LeaveOnlyTheGain(host);
  for (const orvcore::geom::Bounds bounds : {orvcore::geom::Bounds{0, 0, 4, 0}, {0, 0, 0, 4}}) {
    const FrameSetup setup{.bounds = bounds, .rowBytes = 64};
    const int expected = bounds.height == 0 ? kInvalid : 0;  // an empty vector has no data pointer
    EXPECT_EQ(Run(setup, setup), expected);
  }
}

}  // namespace
