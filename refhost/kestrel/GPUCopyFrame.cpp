#include <memory>

#include "host/kestrel/FrameManipulators.h"
#include "refhost/ResultCodes.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/GPUConversion.h"
#include "refhost/kestrel/GPUFrame.h"
#include "refhost/kestrel/MakeBandCopy.h"
#include "refhost/kestrel/MakeConverter.h"
#include "refhost/kestrel/PixelFormats.h"

using orvmediatypes::color::ColorManagementSettings;

namespace RefHost {

namespace {

bool AreOfOneSize(const GPUFrameView& onGPU, const FrameView& inMemory) {
  return static_cast<int>(onGPU.width) == inMemory.width &&
         static_cast<int>(onGPU.height) == inMemory.height;
}

/// A GPU frame's rows as they pass through a ring.
FrameView ViewRing(const PX::VideoFrameRef& frame, const GPUFrameView& view, const RowRing& ring) {
  FrameView rows;
  rows.format = frame->GetPixelFormat();
  rows.info = DescribeFormat(rows.format).value_or(FormatInfo{});
  rows.width = static_cast<int>(view.width);
  rows.height = static_cast<int>(view.height);
  rows.planes[0] = {ring.memory, static_cast<std::int32_t>(ring.rowBytes), rows.width, rows.height};
  rows.heldRows = static_cast<int>(ring.rows);
  return rows;
}

int Upload(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
           const ColorManagementSettings& settings) {
  FrameView source;
  GPUFrameView destination;
  if (const int result = ViewFrame(from, source); result < 0) return result;
  if (const int result = ViewGPUFrame(to, destination); result < 0) return result;
  if (!AreOfOneSize(destination, source)) return kInvalidFrame;

  std::unique_ptr<const BandCopy> copy;
  const auto fill = [&](const RowRing& ring, std::size_t first, std::size_t last) {
    if (copy == nullptr) {
      const int result =
          MakeBandCopy(source, from->GetColorSpace(), ViewRing(to, destination, ring),
                       to->GetColorSpace(), settings, copy);
      if (result < 0) return result;
    }
    RunBands(*copy, static_cast<int>(first), static_cast<int>(last));
    return 0;
  };
  return destination.device->UploadRows(destination.pixels, destination.rowBytes,
                                        destination.height, fill);
}

int Download(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
             const ColorManagementSettings& settings) {
  GPUFrameView source;
  FrameView destination;
  if (const int result = ViewGPUFrame(from, source); result < 0) return result;
  if (const int result = ViewFrame(to, destination); result < 0) return result;
  if (!AreOfOneSize(source, destination)) return kInvalidFrame;

  std::unique_ptr<const BandCopy> copy;
  int done = 0;
  const auto take = [&](const RowRing& ring, std::size_t /*first*/, std::size_t last) {
    if (copy == nullptr) {
      const int result = MakeBandCopy(ViewRing(from, source, ring), from->GetColorSpace(),
                                      destination, to->GetColorSpace(), settings, copy);
      if (result < 0) return result;
    }
    // Halved chroma takes rows beyond a band: one band waits for those after it.
    const int there = static_cast<int>(last);
    const int ready = there == destination.height ? there : there - kBandRows;
    RunBands(*copy, done, ready);
    done = ready;
    return 0;
  };
  return source.device->DownloadRows(source.pixels, source.rowBytes, source.height, take);
}

int CopyOnGPU(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              const ColorManagementSettings& settings) {
  GPUFrameView source;
  GPUFrameView destination;
  if (const int result = ViewGPUFrame(from, source); result < 0) return result;
  if (const int result = ViewGPUFrame(to, destination); result < 0) return result;
  if (source.width != destination.width || source.height != destination.height) {
    return kInvalidFrame;
  }
  if (source.device != destination.device) return kNotSupported;

  std::shared_ptr<const PixelConverter> converter;
  if (const int result =
          MakeConverter(from->GetColorSpace(), to->GetColorSpace(), settings, converter);
      result < 0) {
    return result;
  }
  const bool sameBytes = converter == nullptr && source.pixelBytes == destination.pixelBytes &&
                         source.rowBytes == destination.rowBytes;
  if (sameBytes) return source.device->Copy(source.pixels, destination.pixels, source.Bytes());
  return ConvertOnGPU(source, destination, converter.get());
}

}  // namespace

}  // namespace RefHost

namespace KS::GPUFrameManipulators {

int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality, const ColorManagementSettings& settings) {
  if (!from.IsUsable() || !to.IsUsable()) return RefHost::kInvalidFrame;
  if (from.Object() == to.Object()) return 0;
  const bool fromGPU = RefHost::IsOnGPU(from);
  const bool toGPU = RefHost::IsOnGPU(to);
  if (fromGPU && toGPU) return RefHost::CopyOnGPU(from, to, settings);
  if (toGPU) return RefHost::Upload(from, to, settings);
  if (fromGPU) return RefHost::Download(from, to, settings);
  return VideoFrameManipulators::CopyFrame(from, to, quality, settings);
}

}  // namespace KS::GPUFrameManipulators
