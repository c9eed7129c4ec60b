#include "refhost/ironlane/Devices.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "refhost/ironlane/opencl/OpenClDevice.h"

namespace IL {

std::string DeviceName(std::int32_t platformKind, std::int32_t ordinal) {
  return (platformKind == kPlatformCuda ? "cuda:" : "opencl:") + std::to_string(ordinal);
}

std::vector<DeviceInfo> ListDevices() {
  std::vector<DeviceInfo> devices = ListCudaDevices();
  const std::vector<DeviceInfo> others = ListOpenClDevices();
  devices.insert(devices.end(), others.begin(), others.end());
  return devices;
}

std::shared_ptr<GpuDevice> OpenDevice(std::int32_t platformKind, std::int32_t ordinal) {
  static std::mutex mutex;
  static std::map<std::pair<std::int32_t, std::int32_t>, std::weak_ptr<GpuDevice>> open;
  const std::lock_guard lock(mutex);
  std::weak_ptr<GpuDevice>& known = open[{platformKind, ordinal}];
  std::shared_ptr<GpuDevice> device = known.lock();
  if (device != nullptr && !device->IsLost()) return device;
  device = nullptr;
  if (platformKind == kPlatformCuda) device = OpenCudaDevice(ordinal);
  if (platformKind == kPlatformOpenCl) device = OpenOpenClDevice(ordinal);
  known = device;
  return device;
}

std::vector<DeviceInfo> InOrderOfChoice(std::vector<DeviceInfo> devices) {
  std::stable_partition(devices.begin(), devices.end(),
                        [](const DeviceInfo& info) { return !info.isProcessor; });
  return devices;
}

std::shared_ptr<GpuDevice> OpenFirstDevice() {
  for (const DeviceInfo& info : InOrderOfChoice(ListDevices())) {
    auto device = OpenDevice(info.platformKind, info.ordinal);
    if (device != nullptr && BuildsKernels(*device)) return device;
  }
  return nullptr;
}

bool BuildsKernels(GpuDevice& device) {
  return device.LoadKernel("ToneMapMain", "ToneMapKernelITU2446A") != nullptr &&
         device.LoadKernel("PixelConversion", "ConvertPixels") != nullptr;
}

bool IsBuiltForCuda() { return !kernels::FindKernelModule("ToneMapMain")->ptx.empty(); }

}  // namespace IL
