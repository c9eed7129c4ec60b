// The CUDA back end on a scripted driver: what becomes of failures.

#include <filesystem>
#include <string>
#include <vector>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

class CudaFailures : public CudaTest {
 protected:
  void Restart() {
    fs::remove_all(cache_);
    ForgetScriptedDriver();
    Trace();
  }
};

constexpr int kNotSupported = 801;
constexpr int kIllegalAddress = 700;

TEST_F(CudaFailures, GiveACodeAndAMessageEach) {
  QUILLON_NEEDS_PTX();
  for (const char* function : {"cuDeviceGetCount",    "cuDeviceGet",
                               "cuDeviceGetName",     "cuDevicePrimaryCtxRetain",
                               "cuCtxPushCurrent",    "cuStreamCreate",
                               "cuEventCreate",       "cuMemAllocAsync",
                               "cuMemHostRegister",   "cuMemcpyHtoDAsync",
                               "cuMemcpyDtoDAsync",   "cuMemcpyDtoHAsync",
                               "cuEventRecord",       "cuEventSynchronize",
                               "cuStreamSynchronize", "cuLinkCreate",
                               "cuLinkAddData",       "cuLinkComplete",
                               "cuModuleLoadData",    "cuModuleGetFunction",
                               "cuLaunchKernel"}) {
    for (const int error : {kNotSupported, kIllegalAddress}) {
      SCOPED_TRACE(std::string(function) + " " + std::to_string(error));
      Restart();
      driver_->failing = function;
      driver_->error = error;
      const auto device = RefHost::OpenCudaDevice(0);
      if (device != nullptr && driver_->calls["cuDevicePrimaryCtxReset"] == 0) {
        EXPECT_EQ(UseDevice(*device),
                  error == kIllegalAddress ? RefHost::kDeviceLost : RefHost::kDeviceFailed);
      }
      EXPECT_THAT(Trace(), HasSubstr(error == kIllegalAddress ? "CUDA_ERROR_ILLEGAL_ADDRESS\r\n"
                                                              : "CUDA_ERROR_NOT_SUPPORTED\r\n"));
    }
  }
}

TEST_F(CudaFailures, OfWorkThatIsDoneLaterAreFoundByTheNextWaitOfThatCall) {
  QUILLON_NEEDS_PTX();
  for (const char* function : {"cuMemcpyHtoDAsync", "cuMemcpyDtoDAsync", "cuLaunchKernel",
                               "cuMemcpyDtoHAsync", "cuMemAllocAsync"}) {
    for (const int error : {kNotSupported, kIllegalAddress}) {
      SCOPED_TRACE(std::string(function) + " " + std::to_string(error));
      Restart();
      const auto device = RefHost::OpenCudaDevice(0);
      driver_->failingLater = function;
      driver_->error = error;
      // Memory that was not made is an illegal address for what comes after.
      const bool isLost = error == kIllegalAddress || function == std::string("cuMemAllocAsync");
      EXPECT_EQ(UseDevice(*device), isLost ? RefHost::kDeviceLost : RefHost::kDeviceFailed);
    }
  }
}

TEST_F(CudaFailures, ThatEndTheContextEndEveryLaterCallAlike) {
  QUILLON_NEEDS_PTX();
  const auto device = RefHost::OpenCudaDevice(0);
  std::uint64_t memory = 0;
  std::vector<char> bytes(kBytes);
  ASSERT_EQ(device->Allocate(kBytes, memory), 0);
  ASSERT_EQ(LaunchOn(*device, memory), 0);
  driver_->failingLater = "cuMemcpyDtoHAsync";
  driver_->error = kIllegalAddress;
  EXPECT_FALSE(device->IsLost());
  ASSERT_EQ(device->Download(memory, bytes.data(), kBytes), RefHost::kDeviceLost);
  EXPECT_THAT(Trace(), HasSubstr("CUDA : a download : CUDA_ERROR_ILLEGAL_ADDRESS\r\n"));
  EXPECT_TRUE(device->IsLost());

  const auto calls = driver_->calls;
  const std::string lost =
      "CUDA : Scripted is lost since CUDA_ERROR_ILLEGAL_ADDRESS of a download : open it again\r\n";
  std::uint64_t pointer = 0;
  EXPECT_EQ(device->Allocate(kBytes, pointer), RefHost::kDeviceLost);
  EXPECT_EQ(Trace(), lost);
  EXPECT_EQ(device->Upload(bytes.data(), memory, kBytes), RefHost::kDeviceLost);
  EXPECT_EQ(Trace(), lost);
  EXPECT_EQ(device->Download(memory, bytes.data(), kBytes), RefHost::kDeviceLost);
  EXPECT_EQ(Trace(), lost);
  EXPECT_EQ(device->Copy(memory, memory, kBytes), RefHost::kDeviceLost);
  EXPECT_EQ(Trace(), lost);
  EXPECT_EQ(device->Finish(), RefHost::kDeviceLost);
  EXPECT_EQ(Trace(), lost);
  EXPECT_EQ(device->LoadKernel("PixelConversion", "ConvertPixels"), nullptr);
  EXPECT_EQ(Trace(), lost);
  device->Free(memory);
  EXPECT_EQ(Trace(), "") << "its memory is gone already";
  EXPECT_EQ(driver_->calls, calls) << "no call reaches the driver";
}

TEST_F(CudaFailures, ThatEndTheContextAreOverWhenTheDeviceIsOpenedAnew) {
  QUILLON_NEEDS_PTX();
  auto device = RefHost::OpenDevice(IL::kPlatformCuda, 0);
  EXPECT_EQ(RefHost::OpenDevice(IL::kPlatformCuda, 0), device);
  driver_->failing = "cuMemcpyHtoDAsync";
  driver_->error = kIllegalAddress;
  ASSERT_EQ(UseDevice(*device), RefHost::kDeviceLost);
  {
    const auto anew = RefHost::OpenDevice(IL::kPlatformCuda, 0);
    ASSERT_NE(anew, nullptr);
    ASSERT_NE(anew, device);
    EXPECT_EQ(UseDevice(*anew), 0) << Trace();
    EXPECT_NE(anew->GetDescription().contextIdentity, device->GetDescription().contextIdentity);
    EXPECT_EQ(UseDevice(*device), RefHost::kDeviceLost);
    device = nullptr;
    EXPECT_EQ(UseDevice(*anew), 0) << "whatever becomes of the old one";
  }
  ExpectNothingHeld();
}

TEST_F(CudaFailures, ThatEndNoContextNeverResetIt) {
  driver_->failing = "cuStreamCreate";
  driver_->error = kNotSupported;
  EXPECT_EQ(RefHost::OpenCudaDevice(0), nullptr);
  EXPECT_EQ(driver_->calls["cuDevicePrimaryCtxReset"], 0) << "others may work in it";
  ExpectNothingHeld();
}

TEST_F(CudaFailures, LeaveNothingBehind) {
  QUILLON_NEEDS_PTX();
  for (const char* function : {"cuStreamCreate", "cuEventCreate", "cuMemAllocAsync",
                               "cuMemHostRegister", "cuMemcpyHtoDAsync", "cuLinkComplete",
                               "cuModuleGetFunction", "cuLaunchKernel", "cuStreamSynchronize"}) {
    for (const int error : {kNotSupported, kIllegalAddress}) {
      SCOPED_TRACE(std::string(function) + " " + std::to_string(error));
      Restart();
      driver_->failing = function;
      driver_->error = error;
      {
        const auto device = RefHost::OpenCudaDevice(0);
        if (device != nullptr) UseDevice(*device);
      }
      ExpectNothingHeld();
    }
  }
}

TEST_F(CudaFailures, AtReleaseAreTraced) {
  QUILLON_NEEDS_PTX();
  for (const bool hasPools : {true, false}) {
    for (const std::string function :
         {"cuMemFree", "cuMemFreeAsync", "cuStreamDestroy", "cuEventDestroy", "cuMemHostUnregister",
          "cuModuleUnload", "cuLinkDestroy", "cuMemPoolTrimTo", "cuDevicePrimaryCtxRelease"}) {
      if (hasPools == (function == "cuMemFree")) continue;
      if (!hasPools && (function == "cuMemFreeAsync" || function == "cuMemPoolTrimTo")) continue;
      SCOPED_TRACE(function);
      Restart();
      driver_->devices[0].hasPools = hasPools;
      driver_->failing = function;
      driver_->error = kNotSupported;
      {
        const auto device = RefHost::OpenCudaDevice(0);
        EXPECT_EQ(UseDevice(*device), 0);
      }
      EXPECT_THAT(Trace(), HasSubstr("CUDA_ERROR_NOT_SUPPORTED\r\n"));
      ExpectNothingHeld();
    }
  }
}

}  // namespace
