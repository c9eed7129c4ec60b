#include "refhost/kestrel/PixelKernel.h"

#include <cstdint>

#include "refhost/ResultCodes.h"

namespace RefHost {

namespace {

Quillon::GPUFrameDescriptor DescriptorOf(const GPUFrameView& frame) {
  return {.devicePointer = frame.pixels,
          .width = frame.width,
          .height = frame.height,
          .rowPitchPixels = frame.rowBytes / frame.pixelBytes,
          .formatFlag = frame.IsHalf() ? 0U : 1U,
          .reserved = 0,
          .padding = 0};
}

int Push(IL::IArgumentSet& arguments, std::initializer_list<GPUFrameView> frames,
         std::initializer_list<KernelValue> values) {
  for (const GPUFrameView& frame : frames) {
    const Quillon::GPUFrameDescriptor descriptor = DescriptorOf(frame);
    const int result = arguments.SetFrameArgument(&descriptor);
    if (result < 0) return result;
  }
  for (const KernelValue& value : values) {
    const int result = arguments.SetValueArgument(value.data, value.bytes, value.alignment);
    if (result < 0) return result;
  }
  return arguments.Finalize();
}

}  // namespace

int RunPixelKernel(std::string_view module, std::string_view kernel,
                   std::initializer_list<GPUFrameView> frames,
                   std::initializer_list<KernelValue> values) {
  const GPUFrameView& pixels = *frames.begin();
  GPUDevice& device = *pixels.device;
  const IL::KernelHandle handle = device.LoadKernel(module, kernel);
  if (handle == nullptr) return kDeviceFailed;

  std::size_t bytes = 0;
  for (const KernelValue& value : values) bytes += value.bytes;
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  int result = device.CreateArguments(handle, bytes, arguments);
  if (result < 0) return result;
  result = Push(*arguments, frames, values);
  if (result < 0) return result;
  const std::uint32_t side = device.BlockSide();
  return device.Launch(handle, arguments, (pixels.width + side - 1) / side,
                       (pixels.height + side - 1) / side, side, side, 0);
}

}  // namespace RefHost
