#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "refhost/ironlane/Devices.h"

/// A device that tests run on, "opencl:0" for example.
struct TestDevice {
  std::int32_t platformKind;
  std::int32_t ordinal;

  std::string Name() const;
  /// The same with an underscore, for names of tests.
  std::string TestName() const;
  std::shared_ptr<RefHost::GPUDevice> Open() const;
};

std::ostream& operator<<(std::ostream& stream, const TestDevice& device);

/// All devices that can run kernels.
std::vector<TestDevice> EveryDevice();

/// A test that runs on every device.
class OnDevice : public testing::TestWithParam<TestDevice> {
 protected:
  void SetUp() override { ASSERT_NE(device_, nullptr) << GetParam(); }

  std::shared_ptr<RefHost::GPUDevice> device_ = GetParam().Open();
};

/// For INSTANTIATE_TEST_SUITE_P.
inline auto DeviceTestName = [](const testing::TestParamInfo<TestDevice>& info) {
  return info.param.TestName();
};
