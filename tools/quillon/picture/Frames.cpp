#include "tools/quillon/picture/Frames.h"

#include <cstdint>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "host/kestrel/FrameManipulators.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/DeviceChoice.h"
#include "tools/quillon/EngineMessages.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace {
constexpr orvmediatypes::RenderQuality kQuality = 4;
}

ColorManagementSettings ColorManagementFor(int white) {
  return ColorManagementSettings(static_cast<orvmediatypes::color::GraphicsWhiteLuminance>(white));
}

PX::VideoFrameRef MakeFloatFrame(int width, int height, const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  if (KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, width, height, {}, colorSpace,
                           false, false) < 0) {
    throw CommandError(ExitCode::NotSupported, "no frame of " + std::to_string(width) + "x" +
                                                   std::to_string(height) + " can be made");
  }
  return frame;
}

PX::VideoFrameRef MakeFloatFrameOn(const std::shared_ptr<IL::GpuDevice>& device, int width,
                                   int height, const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  const EngineMessages messages;
  if (KS::CreateGPUVideoFrame(frame, device, orvmediatypes::kLinearFloatBGRA, width, height, {}, {},
                              {}, colorSpace, 0, 0, 0, nullptr, {}, false) < 0) {
    throw CommandError(ExitCode::NotSupported,
                       "no frame of " + std::to_string(width) + "x" + std::to_string(height) +
                           " can be made on " + DeviceName(device->Info()) + ": " +
                           messages.Joined() + "; --device cpu maps it in system memory");
  }
  return frame;
}

void MovePixels(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to) {
  const EngineMessages messages;
  if (KS::GPUFrameManipulators::CopyFrame(from, to, kQuality, {}) < 0) {
    throw CommandError(ExitCode::EngineRefused, "the device failed: " + messages.Joined());
  }
}

void CopyConverted(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to, int white) {
  if (KS::VideoFrameManipulators::CopyFrame(from, to, kQuality, ColorManagementFor(white)) >= 0) {
    return;
  }
  throw CommandError(ExitCode::NotSupported,
                     "no conversion from " +
                         DescribeColorSpace(from->GetColorSpace().Description()) + " to " +
                         DescribeColorSpace(to->GetColorSpace().Description()));
}

PX::VideoFrameRef ConvertToFloat(const PX::VideoFrameRef& frame, const ColorSpace& colorSpace,
                                 int white) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  PX::VideoFrameRef converted = MakeFloatFrame(bounds.width, bounds.height, colorSpace);
  CopyConverted(frame, converted, white);
  return converted;
}

FloatPixels ViewFloatPixels(const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  return {static_cast<float*>(memory->GetData()), bounds.width, bounds.height,
          memory->GetRowBytes() / static_cast<std::ptrdiff_t>(sizeof(float))};
}
