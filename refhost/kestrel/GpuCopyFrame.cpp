#include <memory>

#include "host/KS/FrameManipulators.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/GpuConversion.h"
#include "refhost/kestrel/GpuFrame.h"
#include "refhost/kestrel/MakeConverter.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/ResultCodes.h"

using orvmediatypes::color::ColorManagementSettings;

namespace KS::GPUFrameManipulators {

namespace {

/// A frame in system memory with rows as a frame on a GPU has them, to move whole.
int MakeStaging(const PX::VideoFrameRef& like, const GpuFrameView& view,
                PX::VideoFrameRef& staging) {
  return CreateSystemFrame(staging, {.format = like->GetPixelFormat(),
                                     .width = static_cast<int>(view.width),
                                     .height = static_cast<int>(view.height),
                                     .aspect = like->GetPixelAspectRatio(),
                                     .colorSpace = like->GetColorSpace(),
                                     .rowBytes = {static_cast<std::int32_t>(view.rowBytes)}});
}

int Upload(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
           orvmediatypes::RenderQuality quality, const ColorManagementSettings& settings) {
  GpuFrameView destination;
  if (const int result = ViewGpuFrame(to, destination); result < 0) return result;
  PX::VideoFrameRef staging;
  if (const int result = MakeStaging(to, destination, staging); result < 0) return result;
  int result = VideoFrameManipulators::CopyFrame(from, staging, quality, settings);
  if (result < 0) return result;
  FrameView pixels;
  result = ViewFrame(staging, pixels);
  if (result < 0) return result;
  return destination.device->Upload(pixels.planes[0].data, destination.pixels, destination.Bytes());
}

int Download(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
             orvmediatypes::RenderQuality quality, const ColorManagementSettings& settings) {
  GpuFrameView source;
  if (const int result = ViewGpuFrame(from, source); result < 0) return result;
  PX::VideoFrameRef staging;
  if (const int result = MakeStaging(from, source, staging); result < 0) return result;
  FrameView pixels;
  int result = ViewFrame(staging, pixels);
  if (result < 0) return result;
  result = source.device->Download(source.pixels, pixels.planes[0].data, source.Bytes());
  if (result < 0) return result;
  return VideoFrameManipulators::CopyFrame(staging, to, quality, settings);
}

int CopyOnGpu(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              const ColorManagementSettings& settings) {
  GpuFrameView source;
  GpuFrameView destination;
  if (const int result = ViewGpuFrame(from, source); result < 0) return result;
  if (const int result = ViewGpuFrame(to, destination); result < 0) return result;
  if (source.width != destination.width || source.height != destination.height) {
    return kInvalidFrame;
  }
  if (source.device != destination.device) return kNotSupported;

  std::shared_ptr<const CHR::PixelConverter> converter;
  if (const int result =
          MakeConverter(from->GetColorSpace(), to->GetColorSpace(), settings, converter);
      result < 0) {
    return result;
  }
  const bool sameBytes = converter == nullptr && source.pixelBytes == destination.pixelBytes &&
                         source.rowBytes == destination.rowBytes;
  if (sameBytes) return source.device->Copy(source.pixels, destination.pixels, source.Bytes());
  return ConvertOnGpu(source, destination, converter.get());
}

}  // namespace

int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality, const ColorManagementSettings& settings) {
  if (!from.IsUsable() || !to.IsUsable()) return kInvalidFrame;
  if (from.Object() == to.Object()) return 0;
  const bool fromGpu = IsOnGpu(from);
  const bool toGpu = IsOnGpu(to);
  if (fromGpu && toGpu) return CopyOnGpu(from, to, settings);
  if (toGpu) return Upload(from, to, quality, settings);
  if (fromGpu) return Download(from, to, quality, settings);
  return VideoFrameManipulators::CopyFrame(from, to, quality, settings);
}

}  // namespace KS::GPUFrameManipulators
