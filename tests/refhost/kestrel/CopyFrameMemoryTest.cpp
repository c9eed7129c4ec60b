#include <algorithm>
#include <cstddef>

#include <gtest/gtest.h>

#include "refhost/orvcore/RecyclerStatistics.h"
#include "tests/refhost/ThreadLimit.h"
#include "tests/refhost/kestrel/Frames.h"

using RefHost::GetRecyclerStatistics;

namespace {

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;

/// Most memory in use during a copy beside what was in use before it.
std::size_t MemoryOfCopy(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to) {
  const ThreadLimit twoThreads(2);
  RefHost::ResetRecyclerPeak();
  const std::size_t before = GetRecyclerStatistics().inUse;
  EXPECT_EQ(Copy(from, to), 0);
  return GetRecyclerStatistics().peak - before;
}

PX::VideoFrameRef Cleared(PixelFormat format, const ColorDescription& colors) {
  PX::VideoFrameRef frame = MakeFrame(format, kWidth, kHeight, colors);
  for (int plane = 0; plane < InfoOf(format).planeCount; ++plane) {
    const RefHost::Plane at = PlaneOf(frame, plane);
    auto* bytes = static_cast<std::byte*>(at.data);
    std::fill_n(bytes, std::ptrdiff_t{at.rowBytes} * at.height, std::byte{0});
  }
  return frame;
}

TEST(CopyFrame, MakesNoPictureBetweenInterleavedFrames) {
  const PX::VideoFrameRef from = Cleared(RefHost::kBgraHalf, kSrgb);
  const PX::VideoFrameRef to = Cleared(RefHost::kBgraFloat, Rgb(9, 8));
  EXPECT_EQ(MemoryOfCopy(from, to), 0U);
}

TEST(CopyFrame, MakesNoPictureOfMemoryThatIsConvertedInPlace) {
  const PX::VideoFrameRef from = Cleared(RefHost::kBgra16, kSrgb);
  RefHost::SystemFrameLayout layout{
      .format = RefHost::kBgraHalf,
      .width = kWidth,
      .height = kHeight,
      .colorSpace = orvmediatypes::color::ColorSpace(Rgb(9, 8)),
      .borrowed = RefHost::BorrowedMemory{{PlaneOf(from, 0).data, nullptr, nullptr}, {}}};
  PX::VideoFrameRef to;
  ASSERT_EQ(RefHost::CreateSystemFrame(to, layout), 0);
  EXPECT_EQ(MemoryOfCopy(from, to), 0U);
}

TEST(CopyFrame, MakesNoPictureOfAFrameThatIsCopiedOntoItself) {
  const PX::VideoFrameRef video =
      Cleared(RefHost::SemiPlanarYCbCr(RefHost::ChromaFormat::C420, 10), YCbCr(1, false));
  EXPECT_EQ(MemoryOfCopy(video, video), 0U);
}

TEST(CopyFrame, MakesNoPictureBetweenYCbCrAndInterleavedFrames) {
  const PX::VideoFrameRef video =
      Cleared(RefHost::SemiPlanarYCbCr(RefHost::ChromaFormat::C420, 10), YCbCr(1, false));
  const PX::VideoFrameRef light = Cleared(RefHost::kBgraFloat, Rgb(9, 8));
  // Two bands of 32 rows are in work, of 68.
  const std::size_t smallerPicture = Samples(video).size();
  EXPECT_LT(MemoryOfCopy(video, light), smallerPicture / 2);
  EXPECT_LT(MemoryOfCopy(light, video), smallerPicture / 2);
}

TEST(CopyFrame, MakesNoPictureBetweenYCbCrFrames) {
  const PX::VideoFrameRef deep =
      Cleared(RefHost::SemiPlanarYCbCr(RefHost::ChromaFormat::C420, 10), YCbCr(1, false));
  const PX::VideoFrameRef video =
      Cleared(RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 8), YCbCr(6, true));
  EXPECT_LT(MemoryOfCopy(deep, video), Samples(deep).size() / 2);
}

}  // namespace
