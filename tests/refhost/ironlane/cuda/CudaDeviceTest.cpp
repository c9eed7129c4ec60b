// The CUDA back end on a scripted driver: what it calls, and what becomes of failures. No kernel
// runs here.

#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/os/DynamicLibrary.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/ResultCodes.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "refhost/orvcore/TraceSettings.h"
#include "tests/refhost/ironlane/CacheHome.h"
#include "tests/refhost/ironlane/cuda/ScriptedDriver.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

scripted::Driver* FindDriver() {
  const HMODULE library = LoadLibraryW(L"nvcuda.dll");
  if (library == nullptr) return nullptr;
  using AnyFunction = void (*)();
  auto* function = reinterpret_cast<scripted::Driver* (*)()>(
      reinterpret_cast<AnyFunction>(GetProcAddress(library, "TheScriptedDriver")));
  return function == nullptr ? nullptr : function();
}

class CudaDevices : public ::testing::Test {
 protected:
  CudaDevices() {
    fs::remove_all(cache_);
    SetCacheHome(cache_);
    orvcore::debug::SetTraceLevel(7);
    orvcore::debug::SetTraceSink([this](int, std::string_view, std::string_view text) {
      const std::lock_guard lock(mutex_);
      trace_ += text;
    });
    if (driver_ != nullptr) *driver_ = {};
  }
  ~CudaDevices() override {
    orvcore::debug::SetTraceSink({});
    orvcore::debug::SetTraceLevel(0);
    fs::remove_all(cache_);
  }
  void SetUp() override { ASSERT_NE(driver_, nullptr) << "the driver is not the scripted one"; }

  void ExpectNothingHeld() const {
    EXPECT_EQ(driver_->contexts, 0);
    EXPECT_EQ(driver_->streams, 0);
    EXPECT_EQ(driver_->modules, 0);
    EXPECT_EQ(driver_->links, 0);
    EXPECT_EQ(driver_->current, 0);
    EXPECT_THAT(driver_->memory, IsEmpty());
  }

  scripted::Driver* const driver_ = FindDriver();
  const fs::path cache_ = fs::path(testing::TempDir()) /
                          (std::string("quillon-cuda-") +
                           testing::UnitTest::GetInstance()->current_test_info()->name());
  std::mutex mutex_;
  std::string trace_;
};

/// The bytes of a value as a parameter has them.
template <class Value>
std::vector<std::uint8_t> BytesOf(const Value& value) {
  std::vector<std::uint8_t> bytes(sizeof(value));
  std::memcpy(bytes.data(), &value, sizeof(value));
  return bytes;
}

constexpr std::size_t kBytes = 4096;

/// Everything that is done with a device, in order; the first negative code ends it.
int UseDevice(IL::GpuDevice& device) {
  std::uint64_t memory = 0;
  std::uint64_t other = 0;
  std::vector<char> bytes(kBytes, 'x');
  int result = device.Allocate(kBytes, memory);
  if (result < 0) return result;
  const auto use = [&] {
    if (const int code = device.Allocate(kBytes, other); code < 0) return code;
    if (const int code = device.Upload(bytes.data(), memory, kBytes); code < 0) return code;
    if (const int code = device.Copy(memory, other, kBytes); code < 0) return code;
    const auto kernel = device.LoadKernel("ToneMapMain", "GamutCompressionKernelReinhard");
    if (kernel == nullptr) return IL::kDeviceFailed;
    orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
    if (const int code = device.CreateArguments(kernel, 20, arguments); code < 0) return code;
    const std::vector<std::uint64_t> frame = {memory, 4, 16, 0};
    const std::uint64_t none = 0;
    const std::uint32_t number = 7;
    const float limit = 1.5F;
    arguments->SetFrameArgument(reinterpret_cast<const Quillon::GPUFrameDescriptor*>(frame.data()));
    arguments->SetValueArgument(&none, 8, 8);
    arguments->SetValueArgument(&number, 4, 4);
    arguments->SetValueArgument(&number, 4, 4);
    arguments->SetValueArgument(&none, 8, 8);
    arguments->SetValueArgument(&limit, 4, 4);
    if (const int code = arguments->Finalize(); code < 0) return code;
    if (const int code = device.Launch(kernel, arguments, 3, 2, 16, 8, 0); code < 0) return code;
    if (const int code = device.Download(other, bytes.data(), kBytes); code < 0) return code;
    return device.Finish();
  };
  result = use();
  device.Free(memory);
  if (other != 0) device.Free(other);
  return result;
}

TEST_F(CudaDevices, AreListedAsTheDriverNamesThem) {
  driver_->devices = 2;
  const auto devices = IL::ListCudaDevices();
  ASSERT_THAT(devices, SizeIs(2));
  EXPECT_EQ(devices[1].platformKind, IL::kPlatformCuda);
  EXPECT_EQ(devices[1].ordinal, 1);
  EXPECT_EQ(devices[1].name, "Scripted 1");
  EXPECT_EQ(devices[1].platform, "NVIDIA CUDA");
  EXPECT_EQ(devices[1].driver, "12.4");
  EXPECT_EQ(devices[1].memoryBytes, std::uint64_t{8} << 30U);
  EXPECT_TRUE(devices[1].isExact);
  EXPECT_EQ(IL::ListDevices()[0].name, "Scripted 0") << "CUDA before OpenCL";
}

TEST_F(CudaDevices, AreOpenedByTheirOrdinalAlone) {
  EXPECT_EQ(IL::OpenCudaDevice(1), nullptr);
  EXPECT_THAT(trace_, HasSubstr("CUDA : there is no device 1\r\n"));
  EXPECT_EQ(IL::OpenCudaDevice(-1), nullptr);
  EXPECT_NE(IL::OpenCudaDevice(0), nullptr);
  ExpectNothingHeld();
}

TEST_F(CudaDevices, AskForBlocksOf16By16AndHaveAnIdentityEach) {
  driver_->devices = 2;
  const auto first = IL::OpenCudaDevice(0);
  const auto second = IL::OpenCudaDevice(1);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(first->GetDescription().platformKind, 1);
  EXPECT_EQ(first->GetDescription().architectureCode, 3);
  EXPECT_EQ(second->GetDescription().ordinal, 1);
  EXPECT_NE(first->GetDescription().contextIdentity, 0U);
  EXPECT_NE(first->GetDescription().contextIdentity, second->GetDescription().contextIdentity);
}

TEST_F(CudaDevices, KeepWhatIsPutIntoTheirMemory) {
  const auto device = IL::OpenCudaDevice(0);
  std::vector<char> bytes(kBytes, 'q');
  std::vector<char> back(kBytes);
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  ASSERT_EQ(device->Allocate(kBytes, first), 0);
  ASSERT_EQ(device->Allocate(kBytes, second), 0);
  EXPECT_EQ(device->Upload(bytes.data(), first, kBytes), 0);
  EXPECT_EQ(device->Copy(first, second, kBytes), 0);
  EXPECT_EQ(device->Download(second, back.data(), kBytes), 0);
  EXPECT_EQ(back, bytes);
  device->Free(first);
  device->Free(second);
  EXPECT_THAT(driver_->memory, IsEmpty());
}

TEST_F(CudaDevices, LaunchWithTheParametersThatThePtxHas) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  {
    const auto device = IL::OpenCudaDevice(0);
    ASSERT_EQ(UseDevice(*device), 0) << trace_;
  }
  ASSERT_THAT(driver_->launches, SizeIs(1));
  const scripted::Launch& launch = driver_->launches[0];
  EXPECT_EQ(launch.kernel, "GamutCompressionKernelReinhard");
  EXPECT_THAT(launch.sizes, ElementsAre(3, 2, 1, 16, 8, 1));
  ASSERT_THAT(launch.parameters, SizeIs(6));
  EXPECT_THAT(launch.parameters[0], SizeIs(32));
  EXPECT_EQ(launch.parameters[1], BytesOf(std::uint64_t{0}));
  EXPECT_EQ(launch.parameters[2], BytesOf(std::uint32_t{7}));
  EXPECT_EQ(launch.parameters[3], BytesOf(std::uint32_t{7}));
  EXPECT_EQ(launch.parameters[4], BytesOf(std::uint64_t{0}));
  EXPECT_EQ(launch.parameters[5], BytesOf(1.5F));
  ExpectNothingHeld();
}

TEST_F(CudaDevices, RefuseLaunchesThatDoNotFit) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  const auto device = IL::OpenCudaDevice(0);
  const auto kernel = device->LoadKernel("ToneMapMain", "GamutCompressionKernelReinhard");
  const auto other = device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A");
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  EXPECT_EQ(device->CreateArguments(nullptr, 4, arguments), IL::kInvalidLaunch);
  ASSERT_EQ(device->CreateArguments(kernel, 4, arguments), 0);
  EXPECT_EQ(device->Launch(kernel, arguments, 1, 1, 1, 1, 0), IL::kInvalidLaunch) << "not final";
  EXPECT_EQ(arguments->Finalize(), IL::kInvalidLaunch) << "fewer bytes than announced";
  const float value = 1.0F;
  EXPECT_EQ(arguments->SetValueArgument(&value, 4, 4), 0);
  EXPECT_EQ(arguments->Finalize(), 0);
  EXPECT_EQ(arguments->SetMemoryArgument(0, 0), IL::kInvalidLaunch);
  EXPECT_EQ(device->Launch(other, arguments, 1, 1, 1, 1, 0), IL::kInvalidLaunch);
  EXPECT_EQ(device->Launch(kernel, arguments, 1, 0, 1, 1, 0), IL::kInvalidLaunch);
  EXPECT_THAT(driver_->launches, IsEmpty());
}

TEST_F(CudaDevices, LinkAModuleOnceAndKeepItOnDisk) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  const auto load = [] {
    const auto device = IL::OpenCudaDevice(0);
    return device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A") != nullptr &&
           device->LoadKernel("ToneMapMain", "ToneMapKernelCARToneCurve") != nullptr;
  };
  EXPECT_TRUE(load());
  EXPECT_EQ(driver_->linked, 1);
  EXPECT_TRUE(load());
  EXPECT_EQ(driver_->linked, 1) << "read from disk";

  const fs::path file = fs::directory_iterator(cache_ / "quillon" / "kernels")->path();
  fs::resize_file(file, fs::file_size(file) / 2);
  EXPECT_TRUE(load());
  EXPECT_EQ(driver_->linked, 2) << "damaged";

  // What the driver no longer takes is built anew, too.
  driver_->calls.clear();
  driver_->failing = "cuModuleLoadData";
  driver_->error = 209;
  EXPECT_TRUE(load());
  EXPECT_EQ(driver_->linked, 3);
}

TEST_F(CudaDevices, SayWhatTheLinkerSaidOfAModuleThatDoesNotBuild) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  driver_->failing = "cuLinkAddData";
  driver_->error = 218;
  const auto device = IL::OpenCudaDevice(0);
  EXPECT_EQ(device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A"), nullptr);
  EXPECT_THAT(trace_, HasSubstr("CUDA : the kernels do not build : what the linker says\r\n"));
  EXPECT_NE(device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A"), nullptr) << "tried again";
  EXPECT_EQ(device->LoadKernel("ToneMapMain", "NoSuchKernel"), nullptr);
  EXPECT_EQ(device->LoadKernel("NoSuchModule", "ToneMapKernelITU2446A"), nullptr);
  EXPECT_THAT(trace_, HasSubstr("CUDA : there is no module NoSuchModule\r\n"));
}

TEST_F(CudaDevices, GiveACodeAndAMessageForEveryCallThatFails) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  for (const char* function :
       {"cuDeviceGetCount", "cuDeviceGet", "cuDeviceGetName", "cuDeviceTotalMem",
        "cuDevicePrimaryCtxRetain", "cuCtxPushCurrent", "cuStreamCreate", "cuMemAlloc",
        "cuMemcpyHtoDAsync", "cuMemcpyDtoDAsync", "cuMemcpyDtoHAsync", "cuStreamSynchronize",
        "cuLinkCreate", "cuLinkAddData", "cuLinkComplete", "cuModuleLoadData",
        "cuModuleGetFunction", "cuLaunchKernel"}) {
    for (const bool isLostThen : {false, true}) {
      SCOPED_TRACE(std::string(function) + (isLostThen ? ", lost then" : ""));
      fs::remove_all(cache_);
      *driver_ = {};
      driver_->failing = function;
      driver_->isLostThen = isLostThen;
      trace_.clear();
      const auto device = IL::OpenCudaDevice(0);
      if (device != nullptr) {
        EXPECT_EQ(UseDevice(*device), IL::kDeviceFailed);
      }
      EXPECT_THAT(trace_, HasSubstr("CUDA_ERROR_LAUNCH_FAILED\r\n"));
    }
  }
}

TEST_F(CudaDevices, LeaveNothingBehindAfterAFailure) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  for (const char* function : {"cuStreamCreate", "cuMemAlloc", "cuMemcpyHtoDAsync",
                               "cuLinkComplete", "cuModuleGetFunction", "cuLaunchKernel"}) {
    SCOPED_TRACE(function);
    *driver_ = {};
    driver_->failing = function;
    {
      const auto device = IL::OpenCudaDevice(0);
      if (device != nullptr) UseDevice(*device);
    }
    ExpectNothingHeld();
  }
}

TEST_F(CudaDevices, FreeTheirMemoryThoughWaitingForTheWorkOnItFailed) {
  {
    const auto device = IL::OpenCudaDevice(0);
    std::uint64_t pointer = 0;
    ASSERT_EQ(device->Allocate(kBytes, pointer), 0);
    driver_->failing = "cuStreamSynchronize";
    device->Free(pointer);
  }
  EXPECT_EQ(driver_->calls["cuStreamSynchronize"], 2);
  ExpectNothingHeld();
}

TEST_F(CudaDevices, TellMemoryThatIsUsedUpFromOtherFailures) {
  const auto device = IL::OpenCudaDevice(0);
  std::uint64_t pointer = 5;
  EXPECT_EQ(device->Allocate(std::size_t{1} << 50U, pointer), IL::kOutOfDeviceMemory);
  EXPECT_EQ(pointer, 5U);
  EXPECT_THAT(trace_, HasSubstr("CUDA : cuMemAlloc : CUDA_ERROR_OUT_OF_MEMORY\r\n"));
}

TEST_F(CudaDevices, AreUsedBySeveralThreadsAtOnce) {
  if (!IL::IsBuiltForCuda()) GTEST_SKIP() << "needs nvcc or clang++, which CMake did not find";
  {
    const auto device = IL::OpenCudaDevice(0);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int j = 0; j < 25; ++j) EXPECT_EQ(UseDevice(*device), 0);
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_THAT(driver_->launches, SizeIs(100));
  EXPECT_EQ(driver_->linked, 1);
  ExpectNothingHeld();
}

/// Run with a driver that lacks everything.
TEST(NoCudaDevices, AreThereWhereTheDriverLacksAFunction) {
  EXPECT_THAT(IL::ListCudaDevices(), IsEmpty());
  EXPECT_EQ(IL::OpenCudaDevice(0), nullptr);
}

}  // namespace
