#include "gpu/LinearizeFrame.h"
#include "tests/gpu/GPUTest.h"

namespace {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::GraphicsWhiteLuminance;
using scripted::FrameOf;
using scripted::StrongCount;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kCode = -1;

class LinearizeFrame : public gpu::GPUTest {
 protected:
  void Make(const scripted::ColorDescription& colors) {
    scripted::FrameSetup setup = SetupOf("source", colors);
    setup.bounds = {5, 6, 3, 2};
    setup.format = gpu::kBgraHalf;
    setup.aspect = {4, 3};
    setup.fieldType = orvmediatypes::FieldType::LowerFirst;
    source = scripted::MakeFrame(setup);
  }

  int Linearize() {
    return Quillon::LinearizeFrame(source, working,
                                   ColorManagementSettings(GraphicsWhiteLuminance::Nits300));
  }
};

TEST_F(LinearizeFrame, SharesASourceThatIsLinearAlready) {
  Make(scripted::kLinear709);
  EXPECT_EQ(Linearize(), 0);
  EXPECT_THAT(host.Calls(),
              ElementsAre("source.QueryInterface(KS::IGPUVideoFrame)", "source.GetDevice()",
                          "source.GetColorSpace()", "ColorSpace::IsLinear(1/8)"));
  EXPECT_EQ(working.Object(), source.Object());
  EXPECT_EQ(StrongCount(source), 2);
}

TEST_F(LinearizeFrame, LeavesALinearSourceThatIsItsOwnOutputAlone) {
  Make(scripted::kLinear709);
  EXPECT_EQ(Quillon::LinearizeFrame(source, source, {}), 0);
  EXPECT_EQ(FrameOf(source).Setup().name, "source");
  EXPECT_EQ(StrongCount(source), 1);
}

TEST_F(LinearizeFrame, ReleasesWhatTheOutputHeld) {
  Make(scripted::kLinear709);
  working = scripted::MakeFrame(SetupOf("old", scripted::kSDR));
  EXPECT_EQ(Linearize(), 0);
  EXPECT_EQ(working.Object(), source.Object());
  EXPECT_THAT(host.CallsTo({"old"}), ElementsAre("old.DisposeObject()", "old.DestroyBlock()"));
}

TEST_F(LinearizeFrame, CopiesAnyOtherSourceIntoANewFrameLikeIt) {
  Make(scripted::kHLG);
  EXPECT_EQ(Linearize(), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre("source.QueryInterface(KS::IGPUVideoFrame)", "source.GetDevice()",
                  "source.GetColorSpace()", "ColorSpace::IsLinear(9/18)",
                  "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)", "source.GetPixelFormat()",
                  "source.GetBounds()", "source.GetPixelAspectRatio()", "source.GetFieldType()",
                  "source.GetOrigin()",
                  "KS::CreateGPUVideoFrame(none, device, 61724742:00080136, 3, 2, 4:3, field 2, "
                  "(5 6), 9/8, 0, 0, 0, none, none, false)",
                  "KS::GPUFrameManipulators::CopyFrame(source, created, 4, white 300)"));
  EXPECT_EQ(FrameOf(working).Setup().name, "created");
  EXPECT_EQ(StrongCount(working), 1);
  EXPECT_EQ(StrongCount(source), 1);
}

TEST_F(LinearizeFrame, CopiesFromTheSourceEvenWhenItIsItsOwnOutput) {
  Make(scripted::kHLG);
  EXPECT_EQ(Quillon::LinearizeFrame(source, source, {}), 0);
  EXPECT_THAT(host.CallsTo({"KS::GPUFrameManipulators"}),
              ElementsAre("KS::GPUFrameManipulators::CopyFrame(source, created, 4, white 203)"));
  EXPECT_EQ(FrameOf(source).Setup().name, "created");
}

TEST_F(LinearizeFrame, TracesAndReturnsAFailedCreation) {
  Make(scripted::kHLG);
  host.FailWithCode("KS::CreateGPUVideoFrame", kCode);
  EXPECT_EQ(Linearize(), kCode);
  EXPECT_THAT(Texts(), ElementsAre("LinearizeFrame : CreateGPUVideoFrame failed\r\n"));
  EXPECT_THAT(host.CallsTo({"KS::GPUFrameManipulators"}), IsEmpty());
  EXPECT_FALSE(working.IsUsable());
}

TEST_F(LinearizeFrame, TracesAndReturnsAFailedCopyAndHandsTheFrameOut) {
  Make(scripted::kHLG);
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", kCode);
  EXPECT_EQ(Linearize(), kCode);
  EXPECT_THAT(Texts(), ElementsAre("LinearizeFrame : Copy to output frame failed\r\n"));
  EXPECT_EQ(FrameOf(working).Setup().name, "created");
}

TEST_F(LinearizeFrame, ReturnsAPositiveCodeOfTheCopyAndTracesNothing) {
  Make(scripted::kHLG);
  host.FailWithCode("KS::CreateGPUVideoFrame", 2);
  host.FailWithCode("KS::GPUFrameManipulators::CopyFrame", 3);
  EXPECT_EQ(Linearize(), 3);
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(LinearizeFrame, RaisesTheNullHandleExceptionForAFrameWithoutADevice) {
  Make(scripted::kHLG);
  host.FailWithNothing("source.QueryInterface(KS::IGPUVideoFrame)");
  EXPECT_THROW(Linearize(), scripted::NullHandleException);
  host.FailWithNothing("source.GetDevice");
  EXPECT_THROW(Linearize(), scripted::NullHandleException);
  EXPECT_THAT(host.CallsTo({"KS::"}), IsEmpty());
}

}  // namespace
