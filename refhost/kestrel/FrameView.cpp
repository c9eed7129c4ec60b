#include "refhost/kestrel/FrameView.h"

#include <algorithm>
#include <functional>

#include "host/kestrel/FrameInterfaces.h"
#include "refhost/ResultCodes.h"

using orvcore::classref::InterfaceCast;

namespace RefHost {

namespace {

/// The pixels of an interleaved frame, by the two-dimensional view's row bytes where there is one.
Plane InterleavedPlane(const PX::VideoFrameRef& frame, int width, int height) {
  const auto memory = InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  if (!memory.IsUsable()) return {};
  const auto pixels = InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame);
  const std::int32_t rowBytes = pixels.IsUsable() ? pixels->GetRowBytes() : memory->GetRowBytes();
  return {memory->GetData(), rowBytes, width, height};
}

bool HoldsPlane(const FrameView& view, int index) {
  const Plane& plane = view.planes[static_cast<std::size_t>(index)];
  const int shiftX = index == 0 ? 0 : view.info.ChromaShiftX();
  const int shiftY = index == 0 ? 0 : view.info.ChromaShiftY();
  return plane.data != nullptr && plane.width == (view.width + shiftX) >> shiftX &&
         plane.height == (view.height + shiftY) >> shiftY && plane.rowBytes >= 0 &&
         static_cast<std::size_t>(plane.rowBytes) >= view.RowSize(index);
}

/// Where the rows of a plane begin and end.
struct ByteRange {
  const std::byte* begin;
  const std::byte* end;
};

ByteRange RangeOf(const FrameView& view, int plane) {
  const int lastRow = view.planes[static_cast<std::size_t>(plane)].height - 1;
  return {view.Row(plane, 0), view.Row(plane, lastRow) + view.RowSize(plane)};
}

}  // namespace

std::size_t FrameView::RowSize(int plane) const {
  return static_cast<std::size_t>(planes[static_cast<std::size_t>(plane)].width) *
         static_cast<std::size_t>(info.SamplesPerPosition(plane) * info.bytesPerSample);
}

int ViewFrame(const PX::VideoFrameRef& frame, FrameView& view) {
  if (!frame.IsUsable()) return kInvalidFrame;
  view.format = frame->GetPixelFormat();
  const auto info = DescribeFormat(view.format);
  if (!info.has_value()) return kNotSupported;
  view.info = *info;
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  view.width = bounds.width;
  view.height = bounds.height;
  const auto [narrow, wide] = std::minmax(view.width, view.height);
  if (narrow <= 0 || wide > kLargestSide) return kInvalidFrame;

  if (!info->IsYCbCr()) {
    view.planes[0] = InterleavedPlane(frame, view.width, view.height);
  } else if (const auto access = InterfaceCast<IVideoFramePlaneAccess>(frame); access.IsUsable()) {
    for (int i = 0; i < info->planeCount; ++i) {
      view.planes[static_cast<std::size_t>(i)] = access->GetPlane(i);
    }
  }
  for (int i = 0; i < info->planeCount; ++i) {
    if (!HoldsPlane(view, i)) return kInvalidFrame;
  }
  return 0;
}

bool ShareMemory(const FrameView& first, const FrameView& second) {
  const std::less<> before;
  for (int i = 0; i < first.info.planeCount; ++i) {
    const ByteRange one = RangeOf(first, i);
    for (int j = 0; j < second.info.planeCount; ++j) {
      const ByteRange other = RangeOf(second, j);
      if (before(one.begin, other.end) && before(other.begin, one.end)) return true;
    }
  }
  return false;
}

}  // namespace RefHost
