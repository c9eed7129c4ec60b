#include <cstring>

#include <gtest/gtest.h>

#include "host/ironlane/Device.h"
#include "host/kestrel/FrameInterfaces.h"
#include "host/orvcore/InterfaceRef.h"
#include "host/orvcore/Threads.h"
#include "host/pavix/IVideoFrame.h"

namespace {

#if defined(__x86_64__) && !defined(_MSC_VER)

/// Place of a virtual operation in its table, counted from 1. In the Itanium C++ ABI a pointer to
/// a virtual member begins with one more than the offset of its entry.
template <class Member>
std::ptrdiff_t Slot(Member member) {
  std::ptrdiff_t encoded = 0;
  static_assert(sizeof(member) >= sizeof(encoded));
  std::memcpy(&encoded, &member, sizeof(encoded));
  const auto entry = static_cast<std::ptrdiff_t>(sizeof(void*));
  EXPECT_EQ((encoded - 1) % entry, 0) << "not a virtual operation";
  return (encoded - 1) / entry + 1;
}

TEST(VirtualOrder, TheQueryIsTheFirstOperationOfAnObject) {
  EXPECT_EQ(Slot(&orvcore::classref::IObject::QueryInterface), 1);
}

TEST(VirtualOrder, AControlBlockDisposesFirstAndDestroysSecond) {
  EXPECT_EQ(Slot(&orvcore::classref::ControlBlock::DisposeObject), 1);
  EXPECT_EQ(Slot(&orvcore::classref::ControlBlock::DestroyBlock), 2);
}

TEST(VirtualOrder, TheFrameOperationsAreBoundsAspectFormatColorSpaceSetColorSpace) {
  EXPECT_EQ(Slot(&PX::IVideoFrame::GetBounds), 1);
  EXPECT_EQ(Slot(&PX::IVideoFrame::GetPixelAspectRatio), 2);
  EXPECT_EQ(Slot(&PX::IVideoFrame::GetPixelFormat), 3);
  EXPECT_EQ(Slot(&PX::IVideoFrame::GetColorSpace), 4);
  EXPECT_EQ(Slot(&PX::IVideoFrame::SetColorSpace), 5);
}

TEST(VirtualOrder, MemoryAccessGivesDataFirstAndRowBytesSecond) {
  EXPECT_EQ(Slot(&KS::IVideoFrameMemoryAccess::GetData), 1);
  EXPECT_EQ(Slot(&KS::IVideoFrameMemoryAccess::GetRowBytes), 2);
}

TEST(VirtualOrder, TwoDimensionalAccessGivesRowBytesSecond) {
  EXPECT_EQ(Slot(&KS::IVideoFrame2DPixelMemoryAccess::GetRowBytes), 2);
}

TEST(VirtualOrder, ADeviceCreatesArgumentsAndThenLaunches) {
  EXPECT_EQ(Slot(&IL::Device::CreateArguments), 1);
  EXPECT_EQ(Slot(&IL::Device::Launch), 2);
}

TEST(VirtualOrder, AnArgumentSetTakesMemoryFrameAndValueAndIsFinalized) {
  EXPECT_EQ(Slot(&IL::IArgumentSet::SetMemoryArgument), 1);
  EXPECT_EQ(Slot(&IL::IArgumentSet::SetFrameArgument), 2);
  EXPECT_EQ(Slot(&IL::IArgumentSet::SetValueArgument), 3);
  EXPECT_EQ(Slot(&IL::IArgumentSet::Finalize), 4);
}

TEST(VirtualOrder, ASubExecutorQueuesSecondAndWaitsNinth) {
  EXPECT_EQ(Slot(&orvcore::threads::AsyncThreadedSubExecutor::Queue), 2);
  EXPECT_EQ(Slot(&orvcore::threads::AsyncThreadedSubExecutor::WaitForAll), 9);
}

#else

TEST(VirtualOrder, IsReadFromItaniumMemberPointers) {
  GTEST_SKIP() << "member pointers of this target do not show the place in the table";
}

#endif

}  // namespace
