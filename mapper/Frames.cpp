#include "mapper/Frames.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
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
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace Quillon::Mapper {

namespace {

float CountedLight(float value) { return std::isfinite(value) ? std::max(value, 0.0F) : 0.0F; }

/// Linear light in which pictures of one kind can be compared, whatever their container.
ColorSpace MeasuringColorSpace(const ColorSpace& tagged) {
  const std::uint8_t transfer = tagged.Description().transfer;
  if (transfer != RefHost::kTransferLinear && transfer != RefHost::kTransferPQ) {
    return CHR::ORVColorSpaceToEquivalentLinearColorSpace(tagged);
  }
  ColorDescription light;
  light.primaries = RefHost::kPrimariesBT2020;
  light.transfer = RefHost::kTransferLinear;
  return ColorSpace(light);
}

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

Failure ForEachLight(const PX::VideoFrameRef& frame, int white,
                     const std::function<void(std::span<const float>)>& useRow) {
  const auto linear = ConvertToFloat(frame, MeasuringColorSpace(frame->GetColorSpace()), white);
  if (!linear) return linear.error();
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(*linear);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  const auto stride = memory->GetRowBytes() / static_cast<std::ptrdiff_t>(sizeof(float));
  const auto nits = static_cast<float>(white);
  std::vector<float> row(static_cast<std::size_t>(bounds.width));
  for (std::ptrdiff_t y = 0; y < bounds.height; ++y) {
    const float* pixel = static_cast<const float*>(memory->GetData()) + y * stride;
    for (float& light : row) {
      light =
          nits * std::max({CountedLight(pixel[0]), CountedLight(pixel[1]), CountedLight(pixel[2])});
      pixel += 4;
    }
    useRow(row);
  }
  return std::nullopt;
}

Result<LightHistogram> CountLight(const PX::VideoFrameRef& frame, int white) {
  LightHistogram histogram;
  if (auto failure =
          ForEachLight(frame, white, [&](std::span<const float> row) { histogram.Add(row); })) {
    return *std::move(failure);
  }
  return histogram;
}

Result<LightLevels> MeasureLight(const PX::VideoFrameRef& frame, int white, double percent) {
  const auto histogram = CountLight(frame, white);
  if (!histogram) return histogram.error();
  return LightLevels{histogram->PeakNits(), histogram->AverageNits(),
                     histogram->PercentileNits(percent)};
}

}  // namespace Quillon::Mapper
