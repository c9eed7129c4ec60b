// What only the OpenCL back end does.

#include <filesystem>
#include <future>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/opencl/OpenClDevices.h"
#include "refhost/ironlane/opencl/OpenClProgram.h"
#include "refhost/ironlane/opencl/OpenClStatus.h"
#include "refhost/orvcore/TraceSettings.h"
#include "tests/devices/EveryDevice.h"
#include "tests/refhost/ironlane/CacheHome.h"

namespace {

namespace fs = std::filesystem;

class OpenClDevices : public OnDevice {
 protected:
  void SetUp() override {
    OnDevice::SetUp();
    if (GetParam().platformKind != IL::kPlatformOpenCl) GTEST_SKIP() << "not an OpenCL device";
  }
};

TEST_P(OpenClDevices, RefuseMemoryThatIsNotTheirs) {
  char byte = 0;
  std::uint64_t pointer = 0;
  ASSERT_EQ(device_->Allocate(16, pointer), 0);
  EXPECT_EQ(device_->Upload(&byte, pointer + 8, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Download(0, &byte, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Copy(pointer, 12345, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Upload(&byte, pointer, 17), RefHost::kInvalidLaunch) << "beyond its end";
  device_->Free(pointer);
  EXPECT_EQ(device_->Upload(&byte, pointer, 1), RefHost::kInvalidLaunch);
}

TEST_P(OpenClDevices, ChooseTheirWorkGroupsThemselves) { EXPECT_EQ(device_->BlockSide(), 1U); }

TEST_P(OpenClDevices, KeepCompiledModulesOnDisk) {
  const fs::path folder = fs::path(testing::TempDir()) / "quillon-opencl-modules";
  fs::remove_all(folder);
  SetCacheHome(folder);
  const auto load = [this] {
    device_ = nullptr;
    device_ = GetParam().Open();
    return IL::LoadKernel(device_, "PixelConversion", "ConvertPixels");
  };
  ASSERT_NE(load(), nullptr);
  const fs::path kernels = folder / "quillon" / "kernels";
  ASSERT_TRUE(fs::exists(kernels));
  const auto file = fs::directory_iterator(kernels)->path();
  const auto written = fs::last_write_time(file);
  EXPECT_NE(load(), nullptr);
  EXPECT_EQ(fs::last_write_time(file), written) << "read, not written again";

  fs::resize_file(file, fs::file_size(file) / 2);
  EXPECT_NE(load(), nullptr);
  EXPECT_EQ(std::distance(fs::directory_iterator(kernels), {}), 1);
  EXPECT_NE(fs::last_write_time(file), written) << "damaged, and written again";
  device_ = nullptr;
  fs::remove_all(folder);
}

TEST_P(OpenClDevices, TraceWhatTheCompilerSaysOfAModuleThatDoesNotBuild) {
  std::string messages;
  RefHost::SetTraceLevel(7);
  RefHost::SetTraceSink([&](int, std::string_view, std::string_view text) { messages += text; });
  const cl::Device device =
      RefHost::FindOpenClDevices()[static_cast<std::size_t>(GetParam().ordinal)];
  const kernels::KernelModule broken = {"Broken", "__kernel void Run() { ThereIsNoSuch(); }", {}};
  EXPECT_FALSE(RefHost::BuildOpenClProgram(cl::Context(device), device, device_->Info(), broken,
                                           RefHost::BinaryCache(fs::path()))
                   .has_value());
  RefHost::SetTraceSink({});
  RefHost::SetTraceLevel(0);
  EXPECT_THAT(messages, testing::AllOf(testing::HasSubstr("module Broken does not build"),
                                       testing::HasSubstr("ThereIsNoSuch")));
}

/// The trace is written while nobody else may build.
TEST_P(OpenClDevices, AllocateAndFindKernelsWhileAnotherThreadBuilds) {
  const auto known = IL::LoadKernel(device_, "PixelConversion", "ConvertPixels");
  ASSERT_NE(known, nullptr);
  int traced = 0;
  RefHost::SetTraceLevel(7);
  RefHost::SetTraceSink([&](int, std::string_view, std::string_view) {
    ++traced;
    std::async(std::launch::async, [&] {
      std::uint64_t pointer = 0;
      EXPECT_EQ(device_->Allocate(16, pointer), 0);
      device_->Free(pointer);
      EXPECT_EQ(IL::LoadKernel(device_, "PixelConversion", "ConvertPixels"), known);
    }).get();
  });
  EXPECT_EQ(IL::LoadKernel(device_, "NoSuchModule", "ConvertPixels"), nullptr);
  RefHost::SetTraceSink({});
  RefHost::SetTraceLevel(0);
  EXPECT_EQ(traced, 1);
}

TEST(OpenClStatus, TellsResourcesFromMemory) {
  std::string messages;
  RefHost::SetTraceLevel(7);
  RefHost::SetTraceSink([&](int, std::string_view, std::string_view text) { messages += text; });
  EXPECT_EQ(RefHost::ResultOf(CL_OUT_OF_RESOURCES, "a launch"), RefHost::kOutOfDeviceMemory);
  EXPECT_EQ(RefHost::ResultOf(CL_MEM_OBJECT_ALLOCATION_FAILURE, "a launch"),
            RefHost::kOutOfDeviceMemory);
  EXPECT_EQ(RefHost::ResultOf(CL_SUCCESS, "a launch"), 0);
  RefHost::SetTraceSink({});
  RefHost::SetTraceLevel(0);
  EXPECT_EQ(
      messages,
      "OpenCL : a launch failed : the device is out of resources, or a kernel failed on it\r\n"
      "OpenCL : a launch failed : -4\r\n");
}

INSTANTIATE_TEST_SUITE_P(EveryDevice, OpenClDevices, testing::ValuesIn(EveryDevice()),
                         DeviceTestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OpenClDevices);

}  // namespace
