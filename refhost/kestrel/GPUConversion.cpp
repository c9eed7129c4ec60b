#include "refhost/kestrel/GPUConversion.h"

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

int Push(IL::IArgumentSet& arguments, const GPUFrameView& source, const GPUFrameView& destination,
         std::int32_t converts, const ConversionParams& params) {
  for (const GPUFrameView* frame : {&source, &destination}) {
    const Quillon::GPUFrameDescriptor descriptor = DescriptorOf(*frame);
    const int result = arguments.SetFrameArgument(&descriptor);
    if (result < 0) return result;
  }
  int result = arguments.SetValueArgument(&converts, sizeof(converts), alignof(std::int32_t));
  if (result < 0) return result;
  result = arguments.SetValueArgument(&params, sizeof(params), alignof(ConversionParams));
  if (result < 0) return result;
  return arguments.Finalize();
}

}  // namespace

int ConvertOnGPU(const GPUFrameView& source, const GPUFrameView& destination,
                 const PixelConverter* converter) {
  GPUDevice& device = *destination.device;
  const IL::KernelHandle kernel = device.LoadKernel("PixelConversion", "ConvertPixels");
  if (kernel == nullptr) return kDeviceFailed;

  const ConversionParams params = converter == nullptr ? ConversionParams{} : converter->Params();
  const std::int32_t converts = converter == nullptr ? 0 : 1;
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  int result = device.CreateArguments(kernel, sizeof(converts) + sizeof(params), arguments);
  if (result < 0) return result;
  result = Push(*arguments, source, destination, converts, params);
  if (result < 0) return result;
  const std::uint32_t side = device.BlockSide();
  return device.Launch(kernel, arguments, (destination.width + side - 1) / side,
                       (destination.height + side - 1) / side, side, side, 0);
}

}  // namespace RefHost
