#include "tests/devices/EveryDevice.h"

#include <algorithm>

std::string TestDevice::Name() const { return RefHost::DeviceName(platformKind, ordinal); }

std::string TestDevice::TestName() const {
  std::string name = Name();
  std::replace(name.begin(), name.end(), ':', '_');
  return name;
}

std::shared_ptr<RefHost::GPUDevice> TestDevice::Open() const {
  return RefHost::OpenDevice(platformKind, ordinal);
}

std::ostream& operator<<(std::ostream& stream, const TestDevice& device) {
  return stream << device.Name();
}

std::vector<TestDevice> EveryDevice() {
  std::vector<TestDevice> devices;
  for (const RefHost::DeviceInfo& info : RefHost::ListDevices()) {
    if (info.obstacle.empty()) devices.push_back({info.platformKind, info.ordinal});
  }
  return devices;
}
