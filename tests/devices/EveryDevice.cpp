#include "tests/devices/EveryDevice.h"

std::string TestDevice::Name() const {
  return (platformKind == IL::kPlatformCuda ? "cuda:" : "opencl:") + std::to_string(ordinal);
}

std::string TestDevice::TestName() const {
  return (platformKind == IL::kPlatformCuda ? "cuda_" : "opencl_") + std::to_string(ordinal);
}

std::shared_ptr<IL::GpuDevice> TestDevice::Open() const {
  return IL::OpenDevice(platformKind, ordinal);
}

std::ostream& operator<<(std::ostream& stream, const TestDevice& device) {
  return stream << device.Name();
}

std::vector<TestDevice> EveryDevice() {
  std::vector<TestDevice> devices;
  for (const IL::DeviceInfo& info : IL::ListDevices()) {
    if (info.obstacle.empty()) devices.push_back({info.platformKind, info.ordinal});
  }
  return devices;
}
