#include <atomic>
#include <thread>
#include <type_traits>

#include "tests/host/HostTest.h"

namespace {

using orvcore::classref::ControlBlock;
using orvcore::classref::InterfaceCast;
using orvcore::classref::InterfaceRef;
using orvcore::classref::IObject;
using scripted::Lines;
using scripted::MakeFrame;
using scripted::NullHandleException;
using scripted::StrongCount;
using scripted::WeakCount;
using testing::ElementsAre;
using testing::IsEmpty;

class Handle : public scripted::HostTest {};

/// A control block that stays where it is and notes what is asked of it.
struct NotingBlock final : ControlBlock {
  void DisposeObject() noexcept override {
    notes.push_back("dispose, weak " + std::to_string(weak));
  }
  void DestroyBlock() noexcept override {
    notes.push_back("destroy, weak " + std::to_string(weak));
  }
  Lines notes;
};

struct NoInterfaces final : IObject {
  void* QueryInterface(std::string_view) noexcept override { return nullptr; }
};

TEST_F(Handle, IsUsableOnlyWithInterfaceAndObject) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  scripted::Frame& object = scripted::FrameOf(frame);

  EXPECT_TRUE(frame.IsUsable());
  EXPECT_FALSE(PX::VideoFrameRef().IsUsable());
  EXPECT_FALSE(PX::VideoFrameRef(&object, nullptr, nullptr).IsUsable());
  EXPECT_FALSE(PX::VideoFrameRef(nullptr, &object, nullptr).IsUsable());
}

TEST_F(Handle, CopyingCountsOneMoreStrongReferenceAndReleasingOneLess) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  EXPECT_EQ(StrongCount(frame), 1);
  EXPECT_EQ(WeakCount(frame), 1);
  {
    const PX::VideoFrameRef copy = frame;
    const PX::VideoFrameRef another = copy;
    EXPECT_EQ(StrongCount(frame), 3);
    EXPECT_EQ(WeakCount(frame), 1);
    EXPECT_EQ(another.Object(), frame.Object());
  }
  EXPECT_EQ(StrongCount(frame), 1);
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(Handle, MovingLeavesAnEmptyHandleAndTheCountAlone) {
  PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  const PX::VideoFrameRef moved = std::move(frame);
  EXPECT_FALSE(frame.IsUsable());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(frame.Object(), nullptr);
  EXPECT_EQ(StrongCount(moved), 1);
}

TEST_F(Handle, AssigningReleasesWhatTheHandleHeld) {
  PX::VideoFrameRef first = MakeFrame({.name = "first"});
  const PX::VideoFrameRef second = MakeFrame({.name = "second"});
  first = second;
  EXPECT_THAT(host.Calls(), ElementsAre("first.DisposeObject()", "first.DestroyBlock()"));
  EXPECT_EQ(StrongCount(second), 2);
}

TEST_F(Handle, AssigningAHandleToItselfKeepsTheObject) {
  PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  const PX::VideoFrameRef& same = frame;
  frame = same;
  EXPECT_TRUE(frame.IsUsable());
  EXPECT_EQ(StrongCount(frame), 1);
}

TEST_F(Handle, LastReleaseDisposesTheObjectAndThenDestroysTheBlock) {
  NoInterfaces object;
  NotingBlock block;
  { const InterfaceRef<IObject> handle(&object, &object, &block); }
  EXPECT_THAT(block.notes, ElementsAre("dispose, weak 1", "destroy, weak 0"));
}

TEST_F(Handle, LeavesTheBlockAloneWhileAWeakReferenceRemains) {
  NoInterfaces object;
  NotingBlock block;
  block.weak = 2;
  { const InterfaceRef<IObject> handle(&object, &object, &block); }
  EXPECT_THAT(block.notes, ElementsAre("dispose, weak 2"));
  EXPECT_EQ(block.weak, 1);
  EXPECT_EQ(block.strong, 0);
}

TEST_F(Handle, CastThatSucceedsTakesOverTheReferenceItIsGiven) {
  PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  const PX::VideoFrameRef other = frame;
  const auto memory = InterfaceCast<KS::IVideoFrameMemoryAccess>(std::move(frame));
  EXPECT_TRUE(memory.IsUsable());
  EXPECT_EQ(memory.Object(), other.Object());
  EXPECT_FALSE(frame.IsUsable());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(StrongCount(other), 2);
  EXPECT_THAT(host.Calls(), ElementsAre("f.QueryInterface(KS::IVideoFrameMemoryAccess)"));
}

TEST_F(Handle, CastThatFailsReleasesTheReferenceItIsGiven) {
  PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  const auto gpu = InterfaceCast<KS::IGPUVideoFrame>(std::move(frame));
  EXPECT_FALSE(gpu.IsUsable());
  EXPECT_EQ(gpu.Object(), nullptr);
  EXPECT_THAT(host.Calls(), ElementsAre("f.QueryInterface(KS::IGPUVideoFrame)", "f.DisposeObject()",
                                        "f.DestroyBlock()"));
}

TEST_F(Handle, CastOfACopyLeavesTheOriginal) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  EXPECT_FALSE(InterfaceCast<KS::IGPUVideoFrame>(frame).IsUsable());
  EXPECT_TRUE(InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame).IsUsable());
  EXPECT_TRUE(frame.IsUsable());
  EXPECT_EQ(StrongCount(frame), 1);
}

TEST_F(Handle, CastOfAnEmptyHandleIsEmptyAndAsksNothing) {
  EXPECT_FALSE(InterfaceCast<KS::IGPUVideoFrame>(PX::VideoFrameRef()).IsUsable());
  EXPECT_THAT(host.Calls(), IsEmpty());
}

TEST_F(Handle, DereferencingAnUnusableHandleThrowsWithTheNameOfItsInterface) {
  const std::string name = typeid(PX::IVideoFrame).name();
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  const PX::VideoFrameRef withoutObject(&scripted::FrameOf(frame), nullptr, nullptr);
  for (const PX::VideoFrameRef& handle : {PX::VideoFrameRef(), withoutObject}) {
    host.Reset();
    try {
      handle->GetBounds();
      FAIL() << "nothing was thrown";
    } catch (const NullHandleException& exception) {
      EXPECT_EQ(exception.what(), "type " + name);
    }
    EXPECT_THAT(host.Calls(),
                ElementsAre("orvcore::debug::GetTypeName(" + name + ")",
                            "orvcore::config::DoThrowNullPtrException(type " + name + ")"));
  }
}

TEST_F(Handle, CountsStayRightWhenManyThreadsCopyAndRelease) {
  const PX::VideoFrameRef frame = MakeFrame({.name = "f"});
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&frame] {
      for (int turn = 0; turn < 10000; ++turn) {
        const PX::VideoFrameRef copy = frame;
        PX::VideoFrameRef another = copy;
        const PX::VideoFrameRef moved = std::move(another);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(StrongCount(frame), 1);
  EXPECT_EQ(WeakCount(frame), 1);
}

}  // namespace
