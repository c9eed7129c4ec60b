#include "refhost/kestrel/PixelKernel.h"

#include <cstdint>

#include "refhost/ironlane/ResultCodes.h"

namespace KS {

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

struct Blocks {
  std::uint32_t block;
  std::uint32_t gridX;
  std::uint32_t gridY;
};

/// OpenCL chooses its own work-groups.
Blocks BlocksFor(const GPUFrameView& frame) {
  constexpr std::uint32_t kBlock = 16;
  if (frame.device->Info().platformKind == IL::kPlatformOpenCl) {
    return {1, frame.width, frame.height};
  }
  return {kBlock, (frame.width + kBlock - 1) / kBlock, (frame.height + kBlock - 1) / kBlock};
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
  IL::GPUDevice& device = *pixels.device;
  const IL::KernelHandle handle = device.LoadKernel(module, kernel);
  if (handle == nullptr) return IL::kDeviceFailed;

  std::size_t bytes = 0;
  for (const KernelValue& value : values) bytes += value.bytes;
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  int result = device.CreateArguments(handle, bytes, arguments);
  if (result < 0) return result;
  result = Push(*arguments, frames, values);
  if (result < 0) return result;
  const Blocks blocks = BlocksFor(pixels);
  return device.Launch(handle, arguments, blocks.gridX, blocks.gridY, blocks.block, blocks.block,
                       0);
}

}  // namespace KS
