#include "base/FrameMemory.h"
#include "tests/host/HostTest.h"

namespace {

using Quillon::FrameMemory;
using scripted::MakeFrame;
using testing::ElementsAre;

class FrameMemoryViews : public scripted::HostTest {};

TEST_F(FrameMemoryViews, RowBytesComeFromTheTwoDimensionalViewWhereThereIsOne) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f", .rowBytes = 64, .rowBytes2D = 80});
  EXPECT_EQ(FrameMemory(frame).RowBytes(), 80);
  EXPECT_THAT(host.Calls(), ElementsAre("f.QueryInterface(KS::IVideoFrameMemoryAccess)",
                                        "f.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                                        "f.GetRowBytes2D()"));
}

TEST_F(FrameMemoryViews, RowBytesComeFromMemoryAccessWhereThereIsNoTwoDimensionalView) {
  const PX::VideoFrameRef frame =
      MakeFrame({.name = "f", .rowBytes = 64, .rowBytes2D = 80, .has2D = false});
  EXPECT_EQ(FrameMemory(frame).RowBytes(), 64);
}

TEST_F(FrameMemoryViews, DataComesFromMemoryAccess) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  EXPECT_EQ(FrameMemory(frame).Data(), scripted::FrameOf(frame).Pixels().data());
}

TEST_F(FrameMemoryViews, AMissingMemoryAccessThrowsWhenItIsUsed) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f", .hasMemory = false});
  const FrameMemory memory(frame);
  EXPECT_THROW(memory.Data(), scripted::NullHandleException);
  EXPECT_EQ(memory.RowBytes(), 32);

  const PX::VideoFrameRef neither = MakeFrame({.name = "n", .hasMemory = false, .has2D = false});
  EXPECT_THROW(FrameMemory(neither).RowBytes(), scripted::NullHandleException);
}

TEST_F(FrameMemoryViews, ReleasesItsViewsAtTheEndOfItsLife) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  {
    const FrameMemory memory(frame);
    EXPECT_EQ(scripted::StrongCount(frame), 3);
  }
  EXPECT_EQ(scripted::StrongCount(frame), 1);
}

}  // namespace
