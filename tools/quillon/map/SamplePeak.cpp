#include "tools/quillon/map/SamplePeak.h"

#include <algorithm>

#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "tools/quillon/picture/LightLevels.h"

namespace {

constexpr int kStrips = 16;
constexpr int kStripRows = 2;  // one row of halved chroma

/// The frame's rows from an even `top` on, as a frame over the same memory.
PX::VideoFrameRef ShowStrip(const PX::VideoFrameRef& frame, int top, int rows) {
  const auto access = orvcore::classref::InterfaceCast<KS::IVideoFramePlaneAccess>(frame);
  const auto info = KS::DescribeFormat(frame->GetPixelFormat()).value_or(KS::FormatInfo{});
  KS::SystemFrameLayout layout{.format = frame->GetPixelFormat(),
                               .width = frame->GetBounds().width,
                               .height = rows,
                               .colorSpace = frame->GetColorSpace()};
  KS::BorrowedMemory memory;
  for (int i = 0; i < access->GetPlaneCount(); ++i) {
    const KS::Plane plane = access->GetPlane(i);
    const std::int64_t row = i == 0 || !info.IsYCbCr() ? top : top >> info.ChromaShiftY();
    const auto index = static_cast<std::size_t>(i);
    memory.planes[index] = static_cast<std::uint8_t*>(plane.data) + row * plane.rowBytes;
    layout.rowBytes[index] = plane.rowBytes;
  }
  layout.borrowed = std::move(memory);
  PX::VideoFrameRef strip;
  KS::CreateSystemFrame(strip, layout);
  return strip;
}

}  // namespace

double SamplePeak(const PX::VideoFrameRef& frame, int white) {
  const int height = frame->GetBounds().height;
  double peak = 0.0;
  for (int i = 0; i < kStrips; ++i) {
    const int top = static_cast<int>(std::int64_t{height} * i / kStrips) & ~1;
    const int rows = std::min(kStripRows, height - top);
    peak = std::max(peak, MeasureLightLevels(ShowStrip(frame, top, rows), white).peakNits);
  }
  return peak;
}
