#include <gtest/gtest-spi.h>

#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/chromant/TransferFunctions.h"
#include "host/kestrel/CreateFrames.h"
#include "host/orvcore/Allocator.h"
#include "host/orvcore/Threads.h"
#include "tests/host/HostTest.h"

namespace {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using scripted::HostException;
using scripted::MakeFrame;
using scripted::Recycler;
using scripted::TakeInventory;
using testing::ElementsAre;

class ScriptedHost : public scripted::HostTest {
 protected:
  int Convert(float* pixel) {
    return CHR::ConvertFrame(pixel, pixel, 1, 1, ColorSpace(scripted::kHLG),
                             orvmediatypes::kLinearFloatBGRA, 1, ColorSpace(scripted::kSDR),
                             orvmediatypes::kLinearFloatBGRA, 1, ColorManagementSettings());
  }
};

TEST_F(ScriptedHost, RecordsCallsInOrderWithTheirArguments) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f", .bounds = {0, 0, 1, 2}});
  frame->GetBounds();
  std::array<float, 4> pixel = {0.5F, 1.0F, 2.0F, 0.0F};
  Convert(pixel.data());
  CHR::ConvertFrame(scripted::FrameOf(frame).Pixels().data(), pixel.data(), 1, 1, ColorSpace(),
                    {1, 2}, 16, ColorSpace(scripted::Colors(9, 16, 400)),
                    orvmediatypes::kLinearFloatBGRA, 32, ColorManagementSettings());
  EXPECT_THAT(host.Calls(),
              ElementsAre("f.GetBounds()",
                          "CHR::ConvertFrame([0.5 1 2 0], in place, 1, 1, 9/18, BGra, 1, 1/1, "
                          "BGra, 1, white 203)",
                          "CHR::ConvertFrame(f.pixels, [0.5 1 2 0], 1, 1, empty, "
                          "00000001:00000002, 16, 9/16@400, BGra, 32, white 203)"));
}

TEST_F(ScriptedHost, FailsTheNthCallAndNoOther) {
  host.FailWithCode("CHR::ConvertFrame", -7, 2);
  host.FailWithException("CHR::ConvertFrame", 3);
  host.FailWithNothing("CHR::ConvertFrame", 4);
  int written = 0;
  host.results.convertFrame = [&](const scripted::Conversion&) { ++written; };

  std::array<float, 4> pixel{};
  EXPECT_EQ(Convert(pixel.data()), 0);
  EXPECT_EQ(Convert(pixel.data()), -7);
  EXPECT_THROW(Convert(pixel.data()), HostException);
  EXPECT_EQ(Convert(pixel.data()), 0);
  EXPECT_EQ(Convert(pixel.data()), 0);
  EXPECT_EQ(written, 2);
}

TEST_F(ScriptedHost, YieldsNullOrEmptyWhereAskedTo) {
  host.FailWithNothing("orvcore::threads::CreateCPUBoundExecutor");
  host.FailWithNothing("KS::CreateVideoFrame");
  host.FailWithNothing("CHR::GetSignalToLinearTransferFn");
  host.FailWithNothing("f.GetData");
  host.FailWithNothing("f.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)");

  EXPECT_EQ(orvcore::threads::CreateCPUBoundExecutor(), nullptr);
  PX::VideoFrameRef made;
  EXPECT_EQ(KS::CreateVideoFrame(made, orvmediatypes::kLinearFloatBGRA, 1, 1, {}, ColorSpace(),
                                 false, false),
            0);
  EXPECT_FALSE(made.IsUsable());
  EXPECT_FALSE(CHR::GetSignalToLinearTransferFn(16, 0));
  using orvcore::classref::InterfaceCast;
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  EXPECT_EQ(InterfaceCast<KS::IVideoFrameMemoryAccess>(frame)->GetData(), nullptr);
  EXPECT_FALSE(InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame).IsUsable());
}

TEST_F(ScriptedHost, RunsTasksWhenTheyAreWaitedForInEitherOrder) {
  for (const auto order : {scripted::TaskOrder::AsQueued, scripted::TaskOrder::Reversed}) {
    host.results.taskOrder = order;
    std::string run;
    const auto sub = orvcore::threads::CreateSubExecutor(nullptr, 3);
    for (const char name : {'a', 'b', 'c'}) sub->Queue([&run, name] { run += name; }, 0);
    EXPECT_EQ(run, "");
    sub->WaitForAll();
    EXPECT_EQ(run, order == scripted::TaskOrder::AsQueued ? "abc" : "cba");
    sub->WaitForAll();
    EXPECT_EQ(run.size(), 3U);
  }
}

TEST_F(ScriptedHost, TransferFunctionsAreSt2084) {
  std::array<float, 3> pixel = {0.0F, 100.0F, 10000.0F};
  CHR::GetLinearToSignalTransferFn(16, 0)(pixel.data(), 1.0F);
  EXPECT_EQ(pixel[0], 0.0F);
  EXPECT_NEAR(pixel[1], 0.508078F, 1e-6F);
  EXPECT_EQ(pixel[2], 1.0F);
  CHR::GetSignalToLinearTransferFn(16, 0)(pixel.data(), 1.0F);
  EXPECT_EQ(pixel[0], 0.0F);
  EXPECT_NEAR(pixel[1], 100.0F, 1e-3F);
  EXPECT_EQ(pixel[2], 10000.0F);
}

TEST_F(ScriptedHost, SeesEverythingThatDoesNotComeBack) {
  const scripted::Inventory before = TakeInventory();
  {
    const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
    const ColorSpace colorSpace;
    const ColorManagementSettings settings;
    const auto executor = orvcore::threads::CreateCPUBoundExecutor();
    const auto sub = orvcore::threads::CreateSubExecutor(executor, 1);
    const std::vector<float, orvcore::allocator::STLAllocator<float>> vector(3);

    scripted::Inventory held = TakeInventory();
    EXPECT_EQ(held.frames, before.frames + 1);
    EXPECT_EQ(held.controlBlocks, before.controlBlocks + 1);
    EXPECT_EQ(held.colorSpaces, before.colorSpaces + 1);
    EXPECT_EQ(held.colorManagementSettings, before.colorManagementSettings + 1);
    EXPECT_EQ(held.executors, before.executors + 1);
    EXPECT_EQ(held.subExecutors, before.subExecutors + 1);
    EXPECT_EQ(held.recyclerBlocks, before.recyclerBlocks + 1);
    EXPECT_EQ(held.recyclerBytes, before.recyclerBytes + 12);
  }
  EXPECT_EQ(TakeInventory(), before);
}

TEST_F(ScriptedHost, FailsTheNthAllocation) {
  Recycler::Instance().FailAllocation(2);
  using orvcore::allocator::MemoryRecycler;
  void* block = MemoryRecycler::Allocate(8);
  EXPECT_THROW(MemoryRecycler::Allocate(8), std::bad_alloc);
  MemoryRecycler::Recycle(block, 8);
  EXPECT_EQ(Recycler::Instance().Allocations(), 2);
}

TEST(ScriptedHostBlocks, SeesABlockThatComesBackWithAnotherSize) {
  using orvcore::allocator::MemoryRecycler;
  const int before = Recycler::Instance().Faults();
  void* block = MemoryRecycler::Allocate(8);
  MemoryRecycler::Recycle(block, 16);
  EXPECT_EQ(Recycler::Instance().Faults(), before + 1);
  MemoryRecycler::Recycle(block, 8);
  EXPECT_EQ(Recycler::Instance().Faults(), before + 1);
}

void ChangeOneFieldUnderWatch() {
  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5);
  const scripted::RecordWatch watch(record);
  record.toneMapSettings.controls.peak = 0.5F;
}

TEST(ScriptedHostRecord, WatchSeesAChangedRecord) {
  testing::TestPartResultArray failures;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    ChangeOneFieldUnderWatch();
  }
  EXPECT_EQ(failures.size(), 2);
}

}  // namespace
