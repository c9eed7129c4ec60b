#include "base/ResultCodes.h"
#include "engine/Quillon.h"
#include "tests/host/HostTest.h"

namespace {

using scripted::Lines;
using scripted::MakeFrame;
using scripted::MakeRecord;
using scripted::RecordWatch;
using testing::ElementsAre;
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

}  // namespace
