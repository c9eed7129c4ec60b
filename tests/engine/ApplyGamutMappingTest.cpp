#include <limits>

#include "base/ResultCodes.h"
#include "engine/Quillon.h"
#include "tests/engine/Pipeline.h"
#include "tests/host/HostTest.h"

namespace {

using scripted::FrameOf;
using scripted::Lines;
using scripted::MakeFrame;
using scripted::MakeRecord;
using scripted::RecordWatch;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kSourceOnGPU = "source.QueryInterface(KS::IGPUVideoFrame)";
constexpr const char* kDestinationOnGPU = "destination.QueryInterface(KS::IGPUVideoFrame)";

class ApplyGamutMapping : public scripted::HostTest {
 protected:
  void Make(bool sourceOnGPU, bool destinationOnGPU) {
    source = MakeFrame({.name = "source", .colors = scripted::kHLG, .onGPU = sourceOnGPU});
    destination =
        MakeFrame({.name = "destination", .colors = scripted::kSDR, .onGPU = destinationOnGPU});
  }

  int Apply() {
    const auto record = MakeRecord(5, 1);
    const RecordWatch watch(record);
    const int result = Quillon::ApplyGamutMapping(source, record, destination);
    for (const PX::VideoFrameRef* frame : {&source, &destination}) {
      EXPECT_TRUE(!frame->IsUsable() || scripted::StrongCount(*frame) == 1);
    }
    return result;
  }

  void TearDown() override {
    source = {};
    destination = {};
    HostTest::TearDown();
  }

  PX::VideoFrameRef source;
  PX::VideoFrameRef destination;
};

TEST_F(ApplyGamutMapping, RefusesAnEmptyHandleWithoutCallingTheHost) {
  destination = MakeFrame({.name = "destination"});
  EXPECT_EQ(Apply(), static_cast<int>(0xA00F000EU));
  std::swap(source, destination);
  EXPECT_EQ(Apply(), static_cast<int>(0xA00F000EU));
  source = {};
  EXPECT_EQ(Apply(), static_cast<int>(0xA00F000EU));
  EXPECT_THAT(host.CallsTo({"source", "destination", "CHR", "KS", "PX", "orvcore"}),
              ElementsAre("destination.DisposeObject()", "destination.DestroyBlock()"));
}

TEST_F(ApplyGamutMapping, RefusesAHandleWithAnInterfaceButNoObject) {
  Make(false, false);
  const auto record = MakeRecord(5);
  PX::VideoFrameRef noObject(&scripted::FrameOf(source), nullptr, nullptr);
  EXPECT_EQ(Quillon::ApplyGamutMapping(noObject, record, destination), Quillon::kInvalidFrame);
  EXPECT_EQ(Quillon::ApplyGamutMapping(source, record, noObject), Quillon::kInvalidFrame);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(ApplyGamutMapping, RefusesAHandleWithAnObjectButNoInterface) {
  Make(false, false);
  const auto record = MakeRecord(5);
  PX::VideoFrameRef noInterface(nullptr, &scripted::FrameOf(source), nullptr);
  EXPECT_EQ(Quillon::ApplyGamutMapping(noInterface, record, destination), Quillon::kInvalidFrame);
  EXPECT_EQ(Quillon::ApplyGamutMapping(source, record, noInterface), Quillon::kInvalidFrame);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(ApplyGamutMapping, RefusesAGPUSourceWithASystemMemoryDestination) {
  Make(true, false);
  EXPECT_EQ(Apply(), static_cast<int>(0xA00F000CU));
  EXPECT_THAT(host.Calls(), ElementsAre(kSourceOnGPU, kDestinationOnGPU, kSourceOnGPU));
}

TEST_F(ApplyGamutMapping, RefusesASystemMemorySourceWithAGPUDestination) {
  Make(false, true);
  EXPECT_EQ(Apply(), static_cast<int>(0xA00F000CU));
  EXPECT_THAT(host.Calls(), ElementsAre(kSourceOnGPU, kSourceOnGPU, kDestinationOnGPU));
}

TEST_F(ApplyGamutMapping, SendsTwoGPUFramesToTheGPUPipelineWithoutLookingAtTheirBounds) {
  Make(true, true);
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre(kSourceOnGPU, kDestinationOnGPU, "ToneMapControls::GetVersion(3)",
                  "CHR::IsGamutMappingApplicable(record)",
                  "KS::GPUFrameManipulators::CopyFrame(source, destination, 4, white 203)"));
}

TEST_F(ApplyGamutMapping, RefusesBoundsThatDifferInAnyOfTheirFourValues) {
  const orvcore::geom::Bounds bounds{3, 4, 2, 2};
  destination = MakeFrame({.name = "destination", .bounds = bounds});
  for (const orvcore::geom::Bounds other :
       {orvcore::geom::Bounds{0, 4, 2, 2}, {3, 0, 2, 2}, {3, 4, 1, 2}, {3, 4, 2, 1}}) {
    source = MakeFrame({.name = "source", .bounds = other});
    host.Reset();
    EXPECT_EQ(Apply(), static_cast<int>(0xA00F000CU));
    EXPECT_THAT(host.Calls(), ElementsAre(kSourceOnGPU, kSourceOnGPU, kDestinationOnGPU,
                                          "destination.GetBounds()", "source.GetBounds()"));
  }
}

TEST_F(ApplyGamutMapping, SendsTwoSystemMemoryFramesOfEqualBoundsToTheSoftwarePipeline) {
  Make(false, false);
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre(kSourceOnGPU, kSourceOnGPU, kDestinationOnGPU, "destination.GetBounds()",
                  "source.GetBounds()", "ToneMapControls::GetVersion(3)",
                  "CHR::IsGamutMappingApplicable(record)",
                  "KS::VideoFrameManipulators::CopyFrame(source, destination, 4, white 100)"));
}

TEST_F(ApplyGamutMapping, TakesOneFrameAsBothSourceAndDestination) {
  source = MakeFrame({.name = "frame", .colors = scripted::kHLG});
  destination = source;
  const auto record = MakeRecord(5);
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Quillon::ApplyGamutMapping(source, record, destination), 0);
  EXPECT_THAT(host.CallsTo({"KS::", "CHR::"}), ElementsAre("CHR::IsGamutMappingApplicable(copy)"));
  EXPECT_EQ(scripted::StrongCount(source), 2);
}

TEST_F(ApplyGamutMapping, PassesThePipelinesResultOnUnchanged) {
  Make(false, false);
  host.results.gamutMappingApplicable = false;
  for (const int code : {-1, -2147483647 - 1, 7}) {
    host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", code);
    EXPECT_EQ(Apply(), code);
  }
}

TEST_F(ApplyGamutMapping, LetsExceptionsOfTheHostPass) {
  Make(false, false);
  host.FailWithException("source.GetBounds");
  EXPECT_THROW(Apply(), scripted::HostException);
  EXPECT_EQ(scripted::StrongCount(source), 1);
  EXPECT_EQ(scripted::StrongCount(destination), 1);
}

constexpr int kUnsupported = static_cast<int>(0xA00F000CU);
constexpr int kInvalid = static_cast<int>(0xA00F000EU);

class ApplyGamutMappingWhole : public scripted::HostTest {
 protected:
  int Apply(const PX::VideoFrameRef& source, PX::VideoFrameRef& destination) {
    const scripted::RecordWatch watch(record);
    return Quillon::ApplyGamutMapping(source, record, destination);
  }

  /// Leaves of the tone map its gain of 2.
  void ToneMapByTheGain() {
    host.results.toneMappingApplicable = true;
    host.results.convertSignalToLinear = [](const auto&, float) { return 100.0F; };
  }

  void SetVersion(int version) { record.toneMapSettings.controls.version = version; }

  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5);
};

TEST_F(ApplyGamutMappingWhole, MapsAFrameThatIsItsOwnDestinationInPlace) {
  ToneMapByTheGain();
  PX::VideoFrameRef frame = MakeFrame({.name = "frame", .colors = scripted::kHLG});
  const PX::VideoFrameRef same = frame;
  EXPECT_EQ(Apply(same, frame), 0);
  EXPECT_THAT(FrameOf(frame).Pixels(), ElementsAre(2.0F, 2.0F, 2.0F, 1.0F, 2.0F, 2.0F, 2.0F, 1.0F,
                                                   2.0F, 2.0F, 2.0F, 1.0F, 2.0F, 2.0F, 2.0F, 1.0F));
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame(frame"}),
              ElementsAre(HasSubstr("in place, 2, 2, 9/18, BGra, 32, 9/8"),
                          HasSubstr("in place, 2, 2, 9/8, BGra, 32, 9/18")));
  EXPECT_THAT(host.CallsTo({"KS::"}), IsEmpty());
}

TEST_F(ApplyGamutMappingWhole, TouchesNothingOfOneFrameWhenNoMappingApplies) {
  host.results.gamutMappingApplicable = false;
  PX::VideoFrameRef frame = MakeFrame({.name = "frame", .colors = scripted::kHLG});
  const PX::VideoFrameRef same = frame;
  EXPECT_EQ(Apply(same, frame), 0);
  EXPECT_THAT(FrameOf(frame).Pixels(), Each(1.0F));
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame", "KS::", "frame.SetColorSpace"}), IsEmpty());
}

TEST_F(ApplyGamutMappingWhole, RefusesEqualSizesAtDifferentPlaces) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source", .bounds = {0, 0, 2, 2}});
  for (const orvcore::geom::Bounds bounds : {orvcore::geom::Bounds{1, 0, 2, 2}, {0, 1, 2, 2}}) {
    PX::VideoFrameRef destination = MakeFrame({.name = "destination", .bounds = bounds});
    EXPECT_EQ(Apply(source, destination), kUnsupported);
    EXPECT_THAT(FrameOf(destination).Pixels(), Each(1.0F));
  }
  EXPECT_THAT(host.CallsTo({"CHR::", "KS::"}), IsEmpty());
}

TEST_F(ApplyGamutMappingWhole, TakesFramesAtAnyPlaceAsLongAsItIsTheSame) {
  ToneMapByTheGain();
  const orvcore::geom::Bounds bounds{std::numeric_limits<int>::min(),
                                     std::numeric_limits<int>::max(), 1, 1};
  const PX::VideoFrameRef source = MakeFrame({.name = "source", .bounds = bounds});
  PX::VideoFrameRef destination = MakeFrame({.name = "destination", .bounds = bounds});
  EXPECT_EQ(Apply(source, destination), 0);
  EXPECT_THAT(FrameOf(destination).Pixels(), ElementsAre(2.0F, 2.0F, 2.0F, 1.0F));
}

TEST_F(ApplyGamutMappingWhole, RefusesAGPUDestinationAndEntersNoPipeline) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source"});
  PX::VideoFrameRef destination = MakeFrame({.name = "destination", .onGPU = true});
  EXPECT_EQ(Apply(source, destination), kUnsupported);
  EXPECT_THAT(host.CallsTo({"CHR::", "KS::", "ToneMapControls", "orvcore::"}), IsEmpty());
}

TEST_F(ApplyGamutMappingWhole, RefusesADestinationWithoutAnObjectAndTracesNothing) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source"});
  PX::VideoFrameRef destination(&FrameOf(source), nullptr, nullptr);
  EXPECT_EQ(Apply(source, destination), kInvalid);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(ApplyGamutMappingWhole, IgnoresTheRecordsColorManagementInVersion2) {
  SetVersion(2);
  pipeline::Frames frames = pipeline::MakeDirectFrames();
  EXPECT_EQ(Apply(frames.source, frames.destination), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}),
              ElementsAre(HasSubstr("white 203"), HasSubstr("white 203")));
}

TEST_F(ApplyGamutMappingWhole, HonoursTheRecordsColorManagementInVersion3) {
  SetVersion(3);
  pipeline::Frames frames = pipeline::MakeDirectFrames();
  EXPECT_EQ(Apply(frames.source, frames.destination), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}),
              ElementsAre(HasSubstr("white 100"), HasSubstr("white 100")));
}

TEST_F(ApplyGamutMappingWhole, RefusesToneMapAlgorithms0And7WithoutATouch) {
  host.results.toneMappingApplicable = true;
  for (const int algorithm : {0, 7}) {
    record.toneMapSettings.algorithmType =
        static_cast<orvmediatypes::color::ToneMapAlgorithmType>(algorithm);
    pipeline::Frames frames = pipeline::MakeDirectFrames();
    EXPECT_EQ(Apply(frames.source, frames.destination), kUnsupported);
    EXPECT_THAT(FrameOf(frames.destination).Pixels(), Each(1.0F));
  }
}

TEST_F(ApplyGamutMappingWhole, LeavesADestinationOfAnotherFormatToTheLastCopy) {
  ToneMapByTheGain();
  pipeline::Frames frames =
      pipeline::MakeFrames(orvmediatypes::kLinearFloatBGRA, pipeline::kOtherFormat);
  host.results.copyFrame = [](const PX::VideoFrameRef& from, const PX::VideoFrameRef& to) {
    FrameOf(to).Pixels() = FrameOf(from).Pixels();
  };
  EXPECT_EQ(Apply(frames.source, frames.destination), 0);
  EXPECT_THAT(
      host.CallsTo({"KS::VideoFrameManipulators"}),
      ElementsAre("KS::VideoFrameManipulators::CopyFrame(source, created, 4, white 100)",
                  "KS::VideoFrameManipulators::CopyFrame(created, destination, 4, white 100)"));
  EXPECT_EQ(FrameOf(frames.destination).Pixels()[0], 2.0F);
  EXPECT_EQ(FrameOf(frames.source).Pixels()[0], 1.0F);
}

TEST_F(ApplyGamutMappingWhole, PlacesRowsByThePaddedStride) {
  ToneMapByTheGain();
  const PX::VideoFrameRef source =
      MakeFrame({.name = "source", .bounds = {0, 0, 1, 2}, .rowBytes = 48});
  PX::VideoFrameRef destination =
      MakeFrame({.name = "destination", .bounds = {0, 0, 1, 2}, .rowBytes = 32});
  EXPECT_EQ(Apply(source, destination), 0);
  EXPECT_THAT(FrameOf(destination).Pixels(),
              ElementsAre(2.0F, 2.0F, 2.0F, 1.0F, 1.0F, 1.0F, 1.0F, 1.0F, 2.0F, 2.0F, 2.0F, 1.0F,
                          1.0F, 1.0F, 1.0F, 1.0F));
}

}  // namespace
