#include "tests/kernels/KernelRun.h"

#include "refhost/kestrel/GPUFrame.h"

namespace {

int RunOn(const std::shared_ptr<RefHost::GPUDevice>& device, const std::string& kernel,
          const RefHost::GPUFrameView& view, const std::vector<float>& floats, std::uint32_t blockX,
          std::uint32_t blockY) {
  const std::uint32_t pitch = view.rowBytes / view.pixelBytes;
  const std::uint32_t flag = view.IsHalf() ? 0 : 1;
  const std::uint64_t size = view.width | std::uint64_t{view.height} << 32U;
  const std::uint64_t none = 0;
  const Quillon::GPUFrameDescriptor frame = {.devicePointer = view.pixels,
                                             .width = view.width,
                                             .height = view.height,
                                             .rowPitchPixels = pitch,
                                             .formatFlag = flag,
                                             .reserved = 0,
                                             .padding = 0};

  const IL::KernelHandle handle = IL::LoadKernel(device, "ToneMapMain", kernel);
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  const auto bytes = static_cast<std::uint32_t>(16 + 4 * floats.size());
  if (const int result = device->CreateArguments(handle, bytes, arguments); result < 0) {
    return result;
  }
  arguments->SetFrameArgument(&frame);
  if (device->GetDescription().platformKind == IL::kPlatformOpenCl) {
    arguments->SetMemoryArgument(0, 0);
  } else {
    arguments->SetValueArgument(&none, 8, 8);
  }
  arguments->SetValueArgument(&pitch, 4, 4);
  arguments->SetValueArgument(&flag, 4, 4);
  arguments->SetValueArgument(&size, 8, 8);
  for (const float& value : floats) arguments->SetValueArgument(&value, 4, 4);
  if (const int result = arguments->Finalize(); result < 0) return result;
  return device->Launch(handle, arguments, (view.width + blockX - 1) / blockX,
                        (view.height + blockY - 1) / blockY, blockX, blockY, 0);
}

}  // namespace

int RunToneMapKernel(const std::shared_ptr<RefHost::GPUDevice>& device, const std::string& kernel,
                     const PX::VideoFrameRef& frame, const std::vector<float>& floats,
                     std::uint32_t blockX, std::uint32_t blockY) {
  RefHost::GPUFrameView view;
  if (const int result = RefHost::ViewGPUFrame(frame, view); result < 0) return result;
  return RunOn(device, kernel, view, floats, blockX, blockY);
}

int RunToneMapKernelOnPart(const std::shared_ptr<RefHost::GPUDevice>& device,
                           const std::string& kernel, const PX::VideoFrameRef& frame,
                           std::uint32_t columns, const std::vector<float>& floats) {
  RefHost::GPUFrameView view;
  if (const int result = RefHost::ViewGPUFrame(frame, view); result < 0) return result;
  view.width = columns;
  return RunOn(device, kernel, view, floats, 1, 1);
}
