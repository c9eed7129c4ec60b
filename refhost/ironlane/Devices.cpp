#include "refhost/ironlane/Devices.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <mutex>
#include <system_error>
#include <utility>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "refhost/ironlane/opencl/OpenClDevice.h"

namespace RefHost {

namespace {

/// What there is of one kind.
struct BackEnd {
  std::int32_t platformKind;
  std::string_view prefix;  // of its devices' names
  std::vector<DeviceInfo> (*list)();
  std::shared_ptr<GPUDevice> (*open)(std::int32_t ordinal);
};

constexpr std::array<BackEnd, 2> kBackEnds = {{
    {IL::kPlatformCuda, "cuda:", ListCudaDevices, OpenCudaDevice},
    {IL::kPlatformOpenCl, "opencl:", ListOpenClDevices, OpenOpenClDevice},
}};

const BackEnd* FindBackEnd(std::int32_t platformKind) {
  for (const BackEnd& backEnd : kBackEnds) {
    if (backEnd.platformKind == platformKind) return &backEnd;
  }
  return nullptr;
}

}  // namespace

std::string DeviceName(std::int32_t platformKind, std::int32_t ordinal) {
  const BackEnd* const backEnd = FindBackEnd(platformKind);
  return std::string(backEnd == nullptr ? "unknown:" : backEnd->prefix) + std::to_string(ordinal);
}

std::optional<DeviceKey> ParseDeviceName(std::string_view name) {
  for (const BackEnd& backEnd : kBackEnds) {
    if (!name.starts_with(backEnd.prefix)) continue;
    const std::string_view digits = name.substr(backEnd.prefix.size());
    const char* const end = digits.data() + digits.size();
    std::uint32_t ordinal = 0;  // takes no sign
    const auto [rest, error] = std::from_chars(digits.data(), end, ordinal);
    if (error != std::errc() || rest != end || !std::in_range<std::int32_t>(ordinal)) break;
    return DeviceKey{backEnd.platformKind, static_cast<std::int32_t>(ordinal)};
  }
  return std::nullopt;
}

std::vector<DeviceInfo> ListDevices() {
  std::vector<DeviceInfo> devices;
  for (const BackEnd& backEnd : kBackEnds) {
    const std::vector<DeviceInfo> own = backEnd.list();
    devices.insert(devices.end(), own.begin(), own.end());
  }
  return devices;
}

std::shared_ptr<GPUDevice> OpenDevice(std::int32_t platformKind, std::int32_t ordinal) {
  static std::mutex mutex;
  static std::map<std::pair<std::int32_t, std::int32_t>, std::weak_ptr<GPUDevice>> open;
  const BackEnd* const backEnd = FindBackEnd(platformKind);
  if (backEnd == nullptr) return nullptr;
  const std::lock_guard lock(mutex);
  std::weak_ptr<GPUDevice>& known = open[{platformKind, ordinal}];
  std::shared_ptr<GPUDevice> device = known.lock();
  if (device != nullptr && !device->IsLost()) return device;
  device = backEnd->open(ordinal);
  known = device;
  return device;
}

std::vector<DeviceInfo> InOrderOfChoice(std::vector<DeviceInfo> devices) {
  std::stable_partition(devices.begin(), devices.end(),
                        [](const DeviceInfo& info) { return !info.isProcessor; });
  return devices;
}

std::shared_ptr<GPUDevice> OpenFirstDevice() {
  for (const DeviceInfo& info : InOrderOfChoice(ListDevices())) {
    auto device = OpenDevice(info.platformKind, info.ordinal);
    if (device != nullptr && BuildsKernels(*device)) return device;
  }
  return nullptr;
}

bool BuildsKernels(GPUDevice& device) {
  return device.LoadKernel("ToneMapMain", "ToneMapKernelITU2446A") != nullptr &&
         device.LoadKernel("PixelConversion", "ConvertPixels") != nullptr;
}

bool IsBuiltForCuda() { return !kernels::FindKernelModule("ToneMapMain")->ptx.empty(); }

}  // namespace RefHost
