#include <limits>

#include "engine/Quillon.h"
#include "tests/engine/Pipeline.h"

namespace {

using scripted::FrameOf;
using scripted::MakeFrame;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kUnsupported = static_cast<int>(0xA00F000CU);
constexpr int kInvalid = static_cast<int>(0xA00F000EU);

class ApplyGamutMappingEdgeCases : public scripted::HostTest {
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

TEST_F(ApplyGamutMappingEdgeCases, MapsAFrameThatIsItsOwnDestinationInPlace) {
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

TEST_F(ApplyGamutMappingEdgeCases, TouchesNothingOfOneFrameWhenNoMappingApplies) {
  host.results.gamutMappingApplicable = false;
  PX::VideoFrameRef frame = MakeFrame({.name = "frame", .colors = scripted::kHLG});
  const PX::VideoFrameRef same = frame;
  EXPECT_EQ(Apply(same, frame), 0);
  EXPECT_THAT(FrameOf(frame).Pixels(), Each(1.0F));
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame", "KS::", "frame.SetColorSpace"}), IsEmpty());
}

TEST_F(ApplyGamutMappingEdgeCases, RefusesEqualSizesAtDifferentPlaces) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source", .bounds = {0, 0, 2, 2}});
  for (const orvcore::geom::Bounds bounds : {orvcore::geom::Bounds{1, 0, 2, 2}, {0, 1, 2, 2}}) {
    PX::VideoFrameRef destination = MakeFrame({.name = "destination", .bounds = bounds});
    EXPECT_EQ(Apply(source, destination), kUnsupported);
    EXPECT_THAT(FrameOf(destination).Pixels(), Each(1.0F));
  }
  EXPECT_THAT(host.CallsTo({"CHR::", "KS::"}), IsEmpty());
}

TEST_F(ApplyGamutMappingEdgeCases, TakesFramesAtAnyPlaceAsLongAsItIsTheSame) {
  ToneMapByTheGain();
  const orvcore::geom::Bounds bounds{std::numeric_limits<int>::min(),
                                     std::numeric_limits<int>::max(), 1, 1};
  const PX::VideoFrameRef source = MakeFrame({.name = "source", .bounds = bounds});
  PX::VideoFrameRef destination = MakeFrame({.name = "destination", .bounds = bounds});
  EXPECT_EQ(Apply(source, destination), 0);
  EXPECT_THAT(FrameOf(destination).Pixels(), ElementsAre(2.0F, 2.0F, 2.0F, 1.0F));
}

TEST_F(ApplyGamutMappingEdgeCases, RefusesAGPUDestinationAndEntersNoPipeline) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source"});
  PX::VideoFrameRef destination = MakeFrame({.name = "destination", .onGPU = true});
  EXPECT_EQ(Apply(source, destination), kUnsupported);
  EXPECT_THAT(host.CallsTo({"CHR::", "KS::", "ToneMapControls", "orvcore::"}), IsEmpty());
}

TEST_F(ApplyGamutMappingEdgeCases, RefusesADestinationWithoutAnObjectAndTracesNothing) {
  const PX::VideoFrameRef source = MakeFrame({.name = "source"});
  PX::VideoFrameRef destination(&FrameOf(source), nullptr, nullptr);
  EXPECT_EQ(Apply(source, destination), kInvalid);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(ApplyGamutMappingEdgeCases, IgnoresTheRecordsColorManagementInVersion2) {
  SetVersion(2);
  pipeline::Frames frames = pipeline::MakeDirectFrames();
  EXPECT_EQ(Apply(frames.source, frames.destination), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}),
              ElementsAre(HasSubstr("white 203"), HasSubstr("white 203")));
}

TEST_F(ApplyGamutMappingEdgeCases, HonoursTheRecordsColorManagementInVersion3) {
  SetVersion(3);
  pipeline::Frames frames = pipeline::MakeDirectFrames();
  EXPECT_EQ(Apply(frames.source, frames.destination), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}),
              ElementsAre(HasSubstr("white 100"), HasSubstr("white 100")));
}

TEST_F(ApplyGamutMappingEdgeCases, RefusesToneMapAlgorithms0And7WithoutATouch) {
  host.results.toneMappingApplicable = true;
  for (const int algorithm : {0, 7}) {
    record.toneMapSettings.algorithmType =
        static_cast<orvmediatypes::color::ToneMapAlgorithmType>(algorithm);
    pipeline::Frames frames = pipeline::MakeDirectFrames();
    EXPECT_EQ(Apply(frames.source, frames.destination), kUnsupported);
    EXPECT_THAT(FrameOf(frames.destination).Pixels(), Each(1.0F));
  }
}

TEST_F(ApplyGamutMappingEdgeCases, LeavesADestinationOfAnotherFormatToTheLastCopy) {
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

TEST_F(ApplyGamutMappingEdgeCases, PlacesRowsByThePaddedStride) {
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
