#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "refhost/kestrel/SystemFrame.h"
#include "refhost/orvcore/RecyclerStatistics.h"
#include "tests/refhost/kestrel/Frames.h"

using orvcore::classref::InterfaceCast;
using orvmediatypes::color::ColorSpace;
using RefHost::ChromaFormat;
using RefHost::CreateSystemFrame;

namespace {

constexpr int kInvalidFrame = static_cast<int>(0xA00F000EU);
constexpr int kNotSupported = static_cast<int>(0xA00F000CU);

const PixelFormat kYCbCr420 = RefHost::PlanarYCbCr(ChromaFormat::C420, 8);

RefHost::SystemFrameLayout Layout(PixelFormat format, int width, int height) {
  return {.format = format, .width = width, .height = height};
}

int ResultOf(const RefHost::SystemFrameLayout& layout) {
  PX::VideoFrameRef frame;
  const int result = CreateSystemFrame(frame, layout);
  EXPECT_EQ(frame.IsUsable(), result == 0);
  return result;
}

TEST(SystemFrame, SaysWhatItWasMadeOf) {
  RefHost::SystemFrameLayout layout = Layout(RefHost::kBgraHalf, 5, 3);
  layout.left = -7;
  layout.top = 11;
  layout.aspect = {4, 3};
  layout.colorSpace = ColorSpace(kSrgb);
  layout.fieldType = orvmediatypes::FieldType::LowerFirst;
  PX::VideoFrameRef frame;
  ASSERT_EQ(CreateSystemFrame(frame, layout), 0);
  EXPECT_EQ(frame->GetBounds(), (orvcore::geom::Bounds{-7, 11, 5, 3}));
  EXPECT_EQ(frame->GetPixelAspectRatio(), (orvmediatypes::PixelAspectRatio{4, 3}));
  EXPECT_EQ(frame->GetPixelFormat(), RefHost::kBgraHalf);
  EXPECT_EQ(frame->GetColorSpace().Description(), kSrgb);
  EXPECT_EQ(frame->GetFieldType(), orvmediatypes::FieldType::LowerFirst);
  EXPECT_EQ(frame->GetOrigin(), (orvcore::geom::PointT<int>{-7, 11}));
}

TEST(SystemFrame, TakesAnotherColorSpace) {
  const PX::VideoFrameRef frame = MakeFrame(RefHost::kBgra8, 1, 1, kSrgb);
  frame->SetColorSpace(ColorSpace(Rgb(9, 16)));
  EXPECT_EQ(frame->GetColorSpace().Description(), Rgb(9, 16));
}

TEST(SystemFrame, ShowsItsInterfacesByName) {
  const PX::VideoFrameRef frame = MakeFrame(RefHost::kBgraFloat, 3, 5, kSrgb);
  orvcore::classref::IObject& object = *frame.Object();
  EXPECT_EQ(object.QueryInterface("PX::IVideoFrame"), &*frame);
  EXPECT_NE(object.QueryInterface("KS::IVideoFrameMemoryAccess"), nullptr);
  EXPECT_NE(object.QueryInterface("KS::IVideoFrame2DPixelMemoryAccess"), nullptr);
  EXPECT_NE(object.QueryInterface("RefHost::IVideoFramePlaneAccess"), nullptr);
  EXPECT_EQ(object.QueryInterface("KS::IGPUVideoFrame"), nullptr);
  EXPECT_EQ(object.QueryInterface("KS::IGPUVideoFrameMemoryAccess"), nullptr);
  EXPECT_EQ(object.QueryInterface(""), nullptr);
}

TEST(SystemFrame, ShowsOneMemoryThroughAllItsInterfaces) {
  const PX::VideoFrameRef frame = MakeFrame(RefHost::kBgraFloat, 3, 5, kSrgb);
  const auto memory = InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  const auto pixels = InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame);
  const RefHost::Plane plane = PlaneOf(frame, 0);
  EXPECT_NE(memory->GetData(), nullptr);
  EXPECT_EQ(memory->GetData(), plane.data);
  EXPECT_EQ(memory->GetRowBytes(), plane.rowBytes);
  EXPECT_EQ(pixels->GetRowBytes(), plane.rowBytes);
  EXPECT_EQ(pixels->GetRowCount(), 5);
}

TEST(SystemFrame, PacksTheRowsOfInterleavedFormats) {
  EXPECT_EQ(PlaneOf(MakeFrame(RefHost::kBgraFloat, 3, 2, kSrgb), 0).rowBytes, 48);
  EXPECT_EQ(PlaneOf(MakeFrame(RefHost::kBgraHalf, 3, 2, kSrgb), 0).rowBytes, 24);
  EXPECT_EQ(PlaneOf(MakeFrame(RefHost::kBgra8, 3, 2, kSrgb), 0).rowBytes, 12);
}

TEST(SystemFrame, AlignsThePlanesAndRowsOfYCbCrFormats) {
  for (const auto& [name, format] : YCbCrFormats()) {
    const PX::VideoFrameRef frame = MakeFrame(format, 71, 5, kSrgb);
    for (int i = 0; i < InfoOf(format).planeCount; ++i) {
      const RefHost::Plane plane = PlaneOf(frame, i);
      EXPECT_EQ(plane.rowBytes % 64, 0) << name;
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plane.data) % 64, 0U) << name;
    }
  }
}

TEST(SystemFrame, RoundsOddChromaSizesUp) {
  const PX::VideoFrameRef c420 = MakeFrame(kYCbCr420, 5, 3, kSrgb);
  EXPECT_EQ(PlaneOf(c420, 1).width, 3);
  EXPECT_EQ(PlaneOf(c420, 2).height, 2);
  const PX::VideoFrameRef c422 =
      MakeFrame(RefHost::SemiPlanarYCbCr(ChromaFormat::C422, 10), 5, 3, kSrgb);
  EXPECT_EQ(PlaneOf(c422, 1).width, 3);
  EXPECT_EQ(PlaneOf(c422, 1).height, 3);
}

TEST(SystemFrame, HasOnlyThePlanesOfItsFormat) {
  const PX::VideoFrameRef frame =
      MakeFrame(RefHost::SemiPlanarYCbCr(ChromaFormat::C420, 8), 4, 4, kSrgb);
  const auto access = InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame);
  EXPECT_EQ(access->GetPlaneCount(), 2);
  EXPECT_EQ(access->GetPlane(2).data, nullptr);
  EXPECT_EQ(access->GetPlane(-1).data, nullptr);
}

TEST(SystemFrame, GivesItsMemoryBackWithItsLastReference) {
  const auto before = RefHost::GetRecyclerStatistics().inUse;
  PX::VideoFrameRef frame = MakeFrame(RefHost::kBgraFloat, 640, 480, kSrgb);
  auto memory = InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  frame = {};
  EXPECT_GE(RefHost::GetRecyclerStatistics().inUse - before, 640U * 480U * 16U);
  std::memset(memory->GetData(), 0, std::size_t{640} * 480 * 16);
  memory = {};
  EXPECT_EQ(RefHost::GetRecyclerStatistics().inUse, before);
}

TEST(SystemFrame, ReleasesBorrowedMemoryExactlyOnceWithTheLastReference) {
  std::array<std::byte, 64> memory{};
  int releases = 0;
  RefHost::SystemFrameLayout layout = Layout(RefHost::kBgra8, 4, 4);
  layout.borrowed = RefHost::BorrowedMemory{{memory.data()}, [&releases] { ++releases; }};
  PX::VideoFrameRef frame;
  ASSERT_EQ(CreateSystemFrame(frame, layout), 0);
  EXPECT_EQ(PlaneOf(frame, 0).data, memory.data());
  PX::VideoFrameRef other = frame;
  frame = {};
  EXPECT_EQ(releases, 0);
  other = {};
  EXPECT_EQ(releases, 1);
}

TEST(SystemFrame, LeavesBorrowedMemoryAloneWhenItIsNotMade) {
  std::array<std::byte, 64> memory{};
  int releases = 0;
  RefHost::SystemFrameLayout layout = Layout(RefHost::kBgra8, 4, 4);
  layout.rowBytes[0] = 15;
  layout.borrowed = RefHost::BorrowedMemory{{memory.data()}, [&releases] { ++releases; }};
  EXPECT_EQ(ResultOf(layout), kInvalidFrame);
  EXPECT_EQ(releases, 0);
}

TEST(SystemFrame, BorrowsEveryPlaneWithItsOwnRowBytes) {
  std::array<std::byte, 256> memory{};
  RefHost::SystemFrameLayout layout = Layout(kYCbCr420, 4, 4);
  layout.rowBytes = {9, 5, 2};
  layout.borrowed = RefHost::BorrowedMemory{{&memory[0], &memory[100], &memory[200]}, {}};
  PX::VideoFrameRef frame;
  ASSERT_EQ(CreateSystemFrame(frame, layout), 0);
  EXPECT_EQ(RowOf(frame, 0, 1), &memory[9]);
  EXPECT_EQ(RowOf(frame, 1, 1), &memory[105]);
  EXPECT_EQ(RowOf(frame, 2, 1), &memory[202]);
}

TEST(CreateSystemFrame, RefusesBorrowedPlanesThatAreNull) {
  std::array<std::byte, 64> memory{};
  RefHost::SystemFrameLayout layout = Layout(kYCbCr420, 2, 2);
  layout.borrowed = RefHost::BorrowedMemory{{&memory[0], &memory[16], nullptr}, {}};
  EXPECT_EQ(ResultOf(layout), kInvalidFrame);
  layout.borrowed->planes[2] = &memory[32];
  layout.rowBytes = {2, 1, 1};
  EXPECT_EQ(ResultOf(layout), 0);
}

TEST(CreateSystemFrame, RefusesSizesThatAreNoPicture) {
  constexpr int kMost = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  for (const auto& [width, height] : {std::pair{0, 4},
                                      {4, 0},
                                      {-1, 4},
                                      {4, -1},
                                      {kLeast, 4},
                                      {4, kLeast},
                                      {kMost, 1},
                                      {1, kMost},
                                      {kMost, kMost}}) {
    EXPECT_EQ(ResultOf(Layout(RefHost::kBgra8, width, height)), kInvalidFrame)
        << width << " " << height;
    EXPECT_EQ(ResultOf(Layout(kYCbCr420, width, height)), kInvalidFrame) << width << " " << height;
  }
}

TEST(CreateSystemFrame, RefusesRowsShorterThanTheirSamples) {
  RefHost::SystemFrameLayout layout = Layout(kYCbCr420, 5, 4);
  layout.rowBytes = {5, 3, 2};
  EXPECT_EQ(ResultOf(layout), kInvalidFrame);
  layout.rowBytes = {5, 3, 3};
  EXPECT_EQ(ResultOf(layout), 0);
  layout.rowBytes = {4, 3, 3};
  EXPECT_EQ(ResultOf(layout), kInvalidFrame);
  layout.rowBytes = {-64, 3, 3};
  EXPECT_EQ(ResultOf(layout), kInvalidFrame);
}

TEST(CreateSystemFrame, RefusesRowsWhoseBytesOverflow) {
  EXPECT_EQ(ResultOf(Layout(RefHost::kBgraFloat, 1 << 27, 1)), kInvalidFrame);
  EXPECT_EQ(ResultOf(Layout(RefHost::PlanarYCbCr(ChromaFormat::C444, 16), 1 << 30, 1)),
            kInvalidFrame);
}

TEST(CreateSystemFrame, RefusesFramesThatAreTooLarge) {
  EXPECT_EQ(ResultOf(Layout(RefHost::PlanarYCbCr(ChromaFormat::C444, 8), RefHost::kLargestSide,
                            RefHost::kLargestSide)),
            kInvalidFrame);
  // Borrowed memory is not asked for: only the size is looked at.
  std::byte memory{};
  RefHost::SystemFrameLayout layout = Layout(RefHost::kBgraFloat, 1 << 20, 1 << 14);
  layout.borrowed = RefHost::BorrowedMemory{{&memory}, {}};
  EXPECT_EQ(ResultOf(layout), 0);
  layout.height += 1;
  EXPECT_EQ(ResultOf(layout), kInvalidFrame);
}

TEST(CreateSystemFrame, RefusesUnknownFormats) {
  EXPECT_EQ(ResultOf(Layout({}, 4, 4)), kNotSupported);
  EXPECT_EQ(ResultOf(Layout({RefHost::kBgraFloat.fourCC, 0}, 4, 4)), kNotSupported);
  EXPECT_EQ(ResultOf(Layout(RefHost::PlanarYCbCr(ChromaFormat::C420, 9), 4, 4)), kNotSupported);
}

TEST(CreateVideoFrame, LeavesTheHandleAloneWhenItFails) {
  const PX::VideoFrameRef before = MakeFrame(RefHost::kBgra8, 2, 2, kSrgb);
  PX::VideoFrameRef frame = before;
  EXPECT_EQ(KS::CreateVideoFrame(frame, RefHost::kBgra8, 0, 2, {}, {}, false, false),
            kInvalidFrame);
  EXPECT_EQ(frame.Object(), before.Object());
}

TEST(CreateVideoFrame, ClearsToZeroWithNeutralChroma) {
  for (const auto& [name, format] : YCbCrFormats()) {
    PX::VideoFrameRef frame;
    ASSERT_EQ(KS::CreateVideoFrame(frame, format, 5, 3, {}, {}, true, false), 0);
    const unsigned neutral = 1U << (static_cast<unsigned>(InfoOf(format).bits) - 1U);
    EXPECT_EQ(Code(frame, 0, 4, 2), 0U) << name;
    EXPECT_EQ(Code(frame, 1, 2, 1), neutral) << name;
    EXPECT_EQ(Code(frame, 2, 0, 0), neutral) << name;
  }
  for (const auto& [name, format] : InterleavedFormats()) {
    PX::VideoFrameRef frame;
    ASSERT_EQ(KS::CreateVideoFrame(frame, format, 5, 3, {}, {}, true, false), 0);
    const std::vector<std::byte> samples = Samples(frame);
    EXPECT_EQ(samples, std::vector<std::byte>(samples.size())) << name;
  }
}

}  // namespace
