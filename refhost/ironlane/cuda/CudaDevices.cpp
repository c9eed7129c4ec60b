#include "refhost/ironlane/cuda/CudaDevices.h"

#include <algorithm>
#include <array>
#include <string>

#include "kernels/KernelModules.h"

namespace RefHost {

namespace {

// Of the driver's enumeration of attributes.
constexpr int kComputeCapabilityMajor = 75;
constexpr int kComputeCapabilityMinor = 76;
constexpr int kMemoryPoolsSupported = 115;

std::string Text(const MajorMinor& version) {
  return std::to_string(version.major) + '.' + std::to_string(version.minor);
}

int AttributeOf(const CudaApi& api, CudaDeviceId id, int attribute) {
  int value = 0;
  api.Check(api.DeviceGetAttribute(&value, attribute, id), "cuDeviceGetAttribute");
  return value;
}

/// Why the device can run no kernels; empty where it may.
std::string ObstacleOf(const CudaTarget& target) {
  const auto texts = kernels::FindKernelModule("ToneMapMain")->ptx;
  if (texts.empty()) return "built without a compiler for CUDA";
  const bool mayLoad = std::any_of(texts.begin(), texts.end(),
                                   [&](std::string_view ptx) { return !target.IsTooOldFor(ptx); });
  // The last is the oldest.
  const auto least = NeedsOf(texts.back());
  if (mayLoad || !least.has_value()) return {};
  if (target.capability < least->capability) {
    return "compute capability " + Text(target.capability) + ", and the kernels need " +
           Text(least->capability);
  }
  return "the driver is for CUDA " + Text(target.Driver()) + ", and the kernels need " +
         Text(least->driver);
}

}  // namespace

std::optional<CudaDescription> DescribeCudaDevice(const CudaApi& api, std::int32_t ordinal) {
  CudaDescription device;
  std::array<char, 256> name{};
  if (api.Check(api.DeviceGet(&device.id, ordinal), "cuDeviceGet") < 0 ||
      api.Check(api.DeviceGetName(name.data(), static_cast<int>(name.size()), device.id),
                "cuDeviceGetName") < 0 ||
      name[0] == '\0') {
    return std::nullopt;
  }
  std::size_t bytes = 0;
  api.Check(api.DeviceTotalMem(&bytes, device.id), "cuDeviceTotalMem");
  int version = 0;
  if (api.Check(api.DriverGetVersion(&version), "cuDriverGetVersion") < 0) version = 0;
  device.target = {.device = name.data(),
                   .capability = {AttributeOf(api, device.id, kComputeCapabilityMajor),
                                  AttributeOf(api, device.id, kComputeCapabilityMinor)},
                   .driverVersion = version};
  device.hasPools = AttributeOf(api, device.id, kMemoryPoolsSupported) != 0;
  device.info.platformKind = IL::kPlatformCuda;
  device.info.ordinal = ordinal;
  device.info.platform = "NVIDIA CUDA";
  device.info.name = name.data();
  device.info.driver = version == 0 ? "unknown" : Text(device.target.Driver());
  device.info.memoryBytes = bytes;
  device.info.obstacle = ObstacleOf(device.target);
  return device;
}

std::int32_t CountCudaDevices(const CudaApi& api) {
  int count = 0;
  return api.Check(api.DeviceGetCount(&count), "cuDeviceGetCount") < 0 ? 0 : count;
}

}  // namespace RefHost
