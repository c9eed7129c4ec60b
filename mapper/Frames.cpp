#include "mapper/Frames.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "base/CopyQuality.h"
#include "host/chromant/Conversion.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "host/kestrel/FrameManipulators.h"
#include "mapper/WrapPicture.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace Quillon::Mapper {

namespace {

float CountedLight(float value) { return std::isfinite(value) ? std::max(value, 0.0F) : 0.0F; }

}  // namespace

ColorManagementSettings ColorManagementFor(int white) {
  return ColorManagementSettings(static_cast<orvmediatypes::color::GraphicsWhiteLuminance>(white));
}

Result<PX::VideoFrameRef> MakeFloatFrame(int width, int height, const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  if (KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, width, height, {}, colorSpace,
                           false, false) >= 0) {
    return frame;
  }
  return NoFrame(width, height);
}

Failure CopyConverted(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to, int white) {
  if (KS::VideoFrameManipulators::CopyFrame(from, to, kCopyQuality, ColorManagementFor(white)) >=
      0) {
    return std::nullopt;
  }
  return Error{Code::NotSupported,
               "no conversion from " + DescribeColorSpace(from->GetColorSpace().Description()) +
                   " to " + DescribeColorSpace(to->GetColorSpace().Description()),
               {}};
}

Result<PX::VideoFrameRef> ConvertToFloat(const PX::VideoFrameRef& frame,
                                         const ColorSpace& colorSpace, int white) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  auto converted = MakeFloatFrame(bounds.width, bounds.height, colorSpace);
  if (!converted) return converted;
  if (auto failure = CopyConverted(frame, *converted, white)) return *std::move(failure);
  return converted;
}

PX::VideoFrameRef ShowRows(const PX::VideoFrameRef& frame, int first, int last) {
  const auto access = orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame);
  const auto info =
      RefHost::DescribeFormat(frame->GetPixelFormat()).value_or(RefHost::FormatInfo{});
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  RefHost::SystemFrameLayout layout{.format = frame->GetPixelFormat(),
                                    .width = bounds.width,
                                    .height = last - first,
                                    .colorSpace = frame->GetColorSpace()};
  RefHost::BorrowedMemory memory;
  for (int i = 0; i < access->GetPlaneCount(); ++i) {
    const RefHost::Plane plane = access->GetPlane(i);
    const std::ptrdiff_t row = i == 0 ? first : first >> info.ChromaShiftY();
    const auto index = static_cast<std::size_t>(i);
    memory.planes[index] = static_cast<std::byte*>(plane.data) + row * plane.rowBytes;
    layout.rowBytes[index] = plane.rowBytes;
  }
  layout.borrowed = std::move(memory);
  PX::VideoFrameRef rows;
  if (RefHost::CreateSystemFrame(rows, layout) < 0) throw std::bad_alloc();
  return rows;
}

Result<std::int64_t> ForEachLight(const PX::VideoFrameRef& frame, int white,
                                  const std::function<void(std::span<const float>)>& useRow) {
  const auto linear = ConvertToFloat(
      frame, CHR::ORVColorSpaceToEquivalentLinearColorSpace(frame->GetColorSpace()), white);
  if (!linear) return linear.error();
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(*linear);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  const auto stride = memory->GetRowBytes() / static_cast<std::ptrdiff_t>(sizeof(float));
  std::vector<float> row(static_cast<std::size_t>(bounds.width));
  for (std::ptrdiff_t y = 0; y < bounds.height; ++y) {
    const float* pixel = static_cast<const float*>(memory->GetData()) + y * stride;
    for (float& light : row) {
      light = std::max({CountedLight(pixel[0]), CountedLight(pixel[1]), CountedLight(pixel[2])});
      pixel += 4;
    }
    useRow(row);
  }
  return std::int64_t{bounds.width} * bounds.height;
}

Result<LightLevels> MeasureLight(const PX::VideoFrameRef& frame, int white) {
  double peak = 0.0;
  double sum = 0.0;
  const auto count = ForEachLight(frame, white, [&](std::span<const float> row) {
    for (const double light : row) {
      peak = std::max(peak, light);
      sum += light;
    }
  });
  if (!count) return count.error();
  return LightLevels{peak * white, sum / static_cast<double>(*count) * white};
}

}  // namespace Quillon::Mapper
