#include "gpu/KernelTarget.h"

#include <typeinfo>
#include <utility>

#include "base/ResultCodes.h"
#include "gpu/KernelCache.h"
#include "gpu/PixelLayout.h"
#include "host/kestrel/FrameInterfaces.h"

namespace Quillon {

using orvcore::classref::InterfaceCast;

std::shared_ptr<IL::Device> DeviceOf(const PX::VideoFrameRef& frame) {
  std::shared_ptr<IL::Device> device = InterfaceCast<KS::IGPUVideoFrame>(frame)->GetDevice();
  if (device == nullptr) {
    orvcore::config::DoThrowNullPtrException(orvcore::debug::GetTypeName(typeid(IL::Device)));
  }
  return device;
}

int MakeKernelTarget(const PX::VideoFrameRef& frame, std::shared_ptr<IL::Device> device,
                     KernelTarget& target) {
  // Deliberate: asked for and not used. Ordering is the device's.
  const auto completion = InterfaceCast<KS::ICompletionEventVideoFrame>(frame);
  const auto memory = InterfaceCast<KS::IGPUVideoFrameMemoryAccess>(frame);
  const auto pixels2D = InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame);

  const orvcore::geom::Bounds bounds = frame->GetBounds();
  const std::uint64_t devicePointer = memory->GetDevicePointer();
  const std::int32_t rowBytes = pixels2D->GetRowBytes();
  const orvmediatypes::PixelFormat format = frame->GetPixelFormat();
  const auto bytesPerPixel = static_cast<std::int32_t>(BytesPerPixel(format));
  if (bytesPerPixel == 0) return kNotSupported;

  const auto width = static_cast<std::uint32_t>(bounds.width);
  const auto height = static_cast<std::uint32_t>(bounds.height);
  const auto rowPitchPixels = static_cast<std::uint32_t>(rowBytes / bytesPerPixel);
  target.head.frame = {.devicePointer = devicePointer,
                       .width = width,
                       .height = height,
                       .rowPitchPixels = rowPitchPixels,
                       .formatFlag = FormatFlag(format),
                       .reserved = 0,
                       .padding = 0};
  target.head.rowPitchPixels = rowPitchPixels;
  target.head.pixelFormat = format;
  target.head.frameSize = std::uint64_t{height} << 32U | width;
  target.description = device->GetDescription();
  target.geometry = ChooseLaunchGeometry(target.description, width, height);
  target.device = std::move(device);
  return kSuccess;
}

int PrepareKernel(const KernelTarget& target, const KernelSignature& kernel,
                  const SupportVector& params,
                  const orvmediatypes::color::ToneMapControls& controls, PreparedKernel& prepared) {
  prepared.arguments = target.head;
  const int result = SetKernelFloats(kernel, params, controls, prepared.arguments);
  if (result < 0) return result;
  prepared.kernel = GetKernel(kernel, target.device, target.description);
  return prepared.kernel != nullptr ? kSuccess : kKernelNotLoaded;
}

int RunKernel(const KernelTarget& target, const PreparedKernel& prepared) {
  return LaunchKernel(*target.device, target.description.platformKind, prepared.kernel,
                      target.geometry, prepared.arguments);
}

}  // namespace Quillon
