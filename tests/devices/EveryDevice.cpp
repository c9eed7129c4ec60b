#include "tests/devices/EveryDevice.h"

#include <algorithm>

std::string TestDevice::Name() const { return IL::DeviceName(platformKind, ordinal); }

std::string TestDevice::TestName() const {
  std::string name = Name();
  std::replace(name.begin(), name.end(), ':', '_');
  return name;
}

std::shared_ptr<IL::GPUDevice> TestDevice::Open() const {
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
