#include <algorithm>
#include <iterator>

#include "engine/LinearFrames.h"
#include "tests/host/HostTest.h"

namespace {

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::GraphicsWhiteLuminance;
using scripted::FrameOf;
using scripted::Lines;
using scripted::MakeFrame;
using scripted::StrongCount;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr PixelFormat kOtherFormat{0x32767579U, 0x00000002U};

class LinearFrames : public scripted::HostTest {
 protected:
  void Make(PixelFormat sourceFormat, PixelFormat destinationFormat) {
    source = MakeFrame({.name = "source",
                        .bounds = {5, 6, 2, 3},
                        .format = sourceFormat,
                        .colors = scripted::kHLG,
                        .aspect = {4, 3},
                        .rowBytes = 48});
    destination = MakeFrame({.name = "destination",
                             .bounds = {5, 6, 2, 3},
                             .format = destinationFormat,
                             .colors = scripted::kSDR,
                             .rowBytes = 64});
  }

  int Get() {
    return Quillon::GetLinearSrcAndDestFrames(
        source, destination, ColorManagementSettings(GraphicsWhiteLuminance::Nits300), working);
  }

  /// All calls but those for the pixel pointers, which are read while the arguments of one call
  /// are put together, in whatever order the compiler likes.
  Lines CallsWithoutData() {
    Lines calls;
    std::copy_if(host.Calls().begin(), host.Calls().end(), std::back_inserter(calls),
                 [](const std::string& call) { return !call.ends_with(".GetData()"); });
    return calls;
  }

  void TearDown() override {
    for (PX::VideoFrameRef* frame : {&working, &source, &destination}) *frame = {};
    HostTest::TearDown();
  }

  PX::VideoFrameRef source;
  PX::VideoFrameRef destination;
  PX::VideoFrameRef working;
};

TEST_F(LinearFrames, LinearizeIntoTheDestinationWhenBothAreLinearFloatBGRA) {
  Make(orvmediatypes::kLinearFloatBGRA, orvmediatypes::kLinearFloatBGRA);
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(CallsWithoutData(),
              ElementsAre("source.GetColorSpace()", "source.GetPixelFormat()",
                          "destination.GetPixelFormat()",
                          "source.QueryInterface(KS::IVideoFrameMemoryAccess)",
                          "source.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                          "destination.QueryInterface(KS::IVideoFrameMemoryAccess)",
                          "destination.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                          "source.GetRowBytes2D()", "destination.GetRowBytes2D()",
                          "destination.GetPixelFormat()",
                          "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)",
                          "source.GetPixelFormat()", "source.GetBounds()",
                          "CHR::ConvertFrame(source.pixels, destination.pixels, 2, 3, 9/18, BGra, "
                          "48, 9/8, BGra, 64, white 300)"));
  EXPECT_THAT(host.CallsTo({"source.GetData"}), ElementsAre("source.GetData()"));
  EXPECT_THAT(host.CallsTo({"destination.GetData"}), ElementsAre("destination.GetData()"));
  EXPECT_EQ(working.Object(), destination.Object());
  EXPECT_EQ(StrongCount(destination), 2);
  EXPECT_EQ(StrongCount(source), 1);
}

TEST_F(LinearFrames, LeaveTheDestinationsTagWhenTheyLinearizeIntoIt) {
  Make(orvmediatypes::kLinearFloatBGRA, orvmediatypes::kLinearFloatBGRA);
  EXPECT_EQ(Get(), 0);
  EXPECT_EQ(FrameOf(destination).Setup().colors, scripted::kSDR);
}

TEST_F(LinearFrames, ConvertInPlaceWhenSourceAndDestinationAreOneFrame) {
  Make(orvmediatypes::kLinearFloatBGRA, orvmediatypes::kLinearFloatBGRA);
  destination = source;
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame", "KS::"}),
              ElementsAre("CHR::ConvertFrame(source.pixels, in place, 2, 3, 9/18, BGra, 48, 9/8, "
                          "BGra, 48, white 300)"));
  EXPECT_EQ(working.Object(), source.Object());
}

TEST_F(LinearFrames, CopyIntoANewFrameWhenTheSourceHasAnotherFormat) {
  Make(kOtherFormat, orvmediatypes::kLinearFloatBGRA);
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(host.Calls(),
              ElementsAre("source.GetColorSpace()", "source.GetPixelFormat()",
                          "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)",
                          "source.GetPixelAspectRatio()", "source.GetBounds()",
                          "KS::CreateVideoFrame(none, BGra, 2, 3, 4:3, 9/8, false, false)",
                          "KS::VideoFrameManipulators::CopyFrame(source, created, 4, white 300)"));
  ASSERT_TRUE(working.IsUsable());
  EXPECT_EQ(FrameOf(working).Setup().name, "created");
  EXPECT_EQ(StrongCount(working), 1);
}

TEST_F(LinearFrames, CopyIntoANewFrameWhenTheDestinationHasAnotherFormat) {
  Make(orvmediatypes::kLinearFloatBGRA, kOtherFormat);
  EXPECT_EQ(Get(), 0);
  EXPECT_THAT(host.CallsTo({"destination", "KS::"}),
              ElementsAre("destination.GetPixelFormat()",
                          "KS::CreateVideoFrame(none, BGra, 2, 3, 4:3, 9/8, false, false)",
                          "KS::VideoFrameManipulators::CopyFrame(source, created, 4, white 300)"));
}

TEST_F(LinearFrames, TellFormatsApartByBothWords) {
  for (const PixelFormat near :
       {PixelFormat{0x61724742U, 0x0008013BU}, PixelFormat{0x61724743U, 0x0008013AU}}) {
    host.Reset();
    Make(near, orvmediatypes::kLinearFloatBGRA);
    EXPECT_EQ(Get(), 0);
    EXPECT_EQ(host.CallsTo({"KS::CreateVideoFrame"}).size(), 1U);
  }
}

TEST_F(LinearFrames, HandOutTheDestinationEvenWhenTheConversionIntoItFailed) {
  Make(orvmediatypes::kLinearFloatBGRA, orvmediatypes::kLinearFloatBGRA);
  host.FailWithCode("CHR::ConvertFrame", -99);
  EXPECT_EQ(Get(), -99);
  EXPECT_EQ(working.Object(), destination.Object());
  EXPECT_THAT(host.Messages(), ElementsAre(scripted::Message{
                                   7, "Quillon", "GetLinearSrcAndDestFrames : failed\r\n"}));
}

TEST_F(LinearFrames, HandOutTheNewFrameEvenWhenTheCopyIntoItFailed) {
  Make(kOtherFormat, kOtherFormat);
  host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", -99);
  EXPECT_EQ(Get(), -99);
  ASSERT_TRUE(working.IsUsable());
  EXPECT_EQ(FrameOf(working).Setup().name, "created");
  EXPECT_THAT(host.Messages(), ElementsAre(scripted::Message{
                                   7, "Quillon", "GetLinearSrcAndDestFrames : failed\r\n"}));
}

TEST_F(LinearFrames, DoNotCopyWhenNoFrameCouldBeMade) {
  Make(kOtherFormat, kOtherFormat);
  host.FailWithCode("KS::CreateVideoFrame", -98);
  EXPECT_EQ(Get(), -98);
  EXPECT_FALSE(working.IsUsable());
  EXPECT_THAT(host.CallsTo({"KS::VideoFrameManipulators"}), IsEmpty());
  EXPECT_THAT(host.Messages(), ElementsAre(scripted::Message{
                                   7, "Quillon", "GetLinearSrcAndDestFrames : failed\r\n"}));
}

TEST_F(LinearFrames, TakeAPositiveCodeForSuccess) {
  Make(kOtherFormat, kOtherFormat);
  host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", 3);
  EXPECT_EQ(Get(), 3);
  EXPECT_THAT(host.Messages(), IsEmpty());
}

}  // namespace
