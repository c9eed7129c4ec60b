// The CUDA back end on a scripted driver: devices and launches. No kernel runs here.

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class CudaDevices : public CudaTest {};

/// The bytes of a value as a parameter has them.
template <class Value>
std::vector<std::uint8_t> BytesOf(const Value& value) {
  std::vector<std::uint8_t> bytes(sizeof(value));
  std::memcpy(bytes.data(), &value, sizeof(value));
  return bytes;
}

TEST_F(CudaDevices, AreListedAsTheDriverNamesThem) {
  driver_->version = 12040;
  driver_->devices = {{.name = "First"}, {.name = "Second"}};
  const auto devices = RefHost::ListCudaDevices();
  ASSERT_THAT(devices, SizeIs(2));
  EXPECT_EQ(devices[1].platformKind, IL::kPlatformCuda);
  EXPECT_EQ(devices[1].ordinal, 1);
  EXPECT_EQ(devices[1].name, "Second");
  EXPECT_EQ(devices[1].platform, "NVIDIA CUDA");
  EXPECT_EQ(devices[1].driver, "12.4");
  EXPECT_EQ(devices[1].memoryBytes, std::uint64_t{8} << 30U);
  EXPECT_TRUE(devices[1].isExact);
  EXPECT_FALSE(devices[1].isProcessor);
  EXPECT_EQ(RefHost::ListDevices()[0].name, "First") << "CUDA before OpenCL";
}

TEST_F(CudaDevices, AreListedUnderANameAlone) {
  driver_->devices = {{.name = ""}, {.name = "Second"}, {.name = "Third"}};
  driver_->failing = "cuDeviceGetName";
  driver_->failingFrom = 3;
  const auto devices = RefHost::ListCudaDevices();
  ASSERT_THAT(devices, SizeIs(1));
  EXPECT_EQ(devices[0].name, "Second");
  EXPECT_EQ(devices[0].ordinal, 1);
}

TEST_F(CudaDevices, AreListedThoughTheDriverDoesNotTellMore) {
  for (const char* function : {"cuDeviceTotalMem", "cuDriverGetVersion"}) {
    ForgetScriptedDriver();
    driver_->failing = function;
    EXPECT_THAT(RefHost::ListCudaDevices(), SizeIs(1)) << function;
    EXPECT_THAT(Trace(), HasSubstr(function));
  }
}

TEST_F(CudaDevices, AreOpenedByTheirOrdinalAlone) {
  EXPECT_EQ(RefHost::OpenCudaDevice(1), nullptr);
  EXPECT_THAT(Trace(), HasSubstr("CUDA : there is no device 1\r\n"));
  EXPECT_EQ(RefHost::OpenCudaDevice(-1), nullptr);
  EXPECT_NE(RefHost::OpenCudaDevice(0), nullptr);
  ExpectNothingHeld();
}

TEST_F(CudaDevices, AskForBlocksOf16By16AndHaveAnIdentityEach) {
  driver_->devices.resize(2);
  const auto first = RefHost::OpenCudaDevice(0);
  const auto second = RefHost::OpenCudaDevice(1);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(first->GetDescription().platformKind, 1);
  EXPECT_EQ(first->GetDescription().architectureCode, 3);
  EXPECT_EQ(second->GetDescription().ordinal, 1);
  EXPECT_NE(first->GetDescription().contextIdentity, 0U);
  EXPECT_NE(first->GetDescription().contextIdentity, second->GetDescription().contextIdentity);
}

TEST_F(CudaDevices, LaunchWithTheParametersThatThePtxHas) {
  QUILLON_NEEDS_PTX();
  {
    const auto device = RefHost::OpenCudaDevice(0);
    ASSERT_EQ(UseDevice(*device), 0) << Trace();
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
  QUILLON_NEEDS_PTX();
  const auto device = RefHost::OpenCudaDevice(0);
  const auto kernel = device->LoadKernel("ToneMapMain", "GamutCompressionKernelReinhard");
  const auto other = device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A");
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  EXPECT_EQ(device->CreateArguments(nullptr, 4, arguments), RefHost::kInvalidLaunch);
  ASSERT_EQ(device->CreateArguments(kernel, 4, arguments), 0);
  EXPECT_EQ(device->Launch(kernel, arguments, 1, 1, 1, 1, 0), RefHost::kInvalidLaunch)
      << "not final";
  EXPECT_EQ(arguments->Finalize(), RefHost::kInvalidLaunch) << "fewer bytes than announced";
  const float value = 1.0F;
  EXPECT_EQ(arguments->SetValueArgument(&value, 4, 4), 0);
  EXPECT_EQ(arguments->Finalize(), 0);
  EXPECT_EQ(arguments->SetMemoryArgument(0, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(device->Launch(other, arguments, 1, 1, 1, 1, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(device->Launch(kernel, arguments, 1, 0, 1, 1, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(driver_->calls["cuLaunchKernel"], 0);
}

TEST_F(CudaDevices, RefuseArgumentsThatAreNotTheKernelsWhereTheDriverTells) {
  QUILLON_NEEDS_PTX();
  const auto device = RefHost::OpenCudaDevice(0);
  const auto kernel = device->LoadKernel("ToneMapMain", "GamutCompressionKernelReinhard");
  ASSERT_NE(driver_->calls["cuFuncGetParamInfo"], 0);
  const auto launch = [&](const std::vector<std::size_t>& sizes) {
    orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
    EXPECT_EQ(device->CreateArguments(kernel, 4, arguments), 0);
    const std::vector<char> zeros(64);
    for (const std::size_t size : sizes) arguments->SetValueArgument(zeros.data(), size, 1);
    EXPECT_EQ(arguments->Finalize(), 0);
    return device->Launch(kernel, arguments, 1, 1, 1, 1, 0);
  };
  EXPECT_EQ(launch({32, 8, 4, 4, 8, 4}), 0);
  EXPECT_EQ(launch({32, 8, 4, 4, 8}), RefHost::kInvalidLaunch) << "too few";
  EXPECT_EQ(launch({32, 8, 4, 4, 8, 4, 4}), RefHost::kInvalidLaunch) << "too many";
  EXPECT_EQ(launch({32, 8, 4, 8, 8, 4}), RefHost::kInvalidLaunch) << "one that is too large";
  EXPECT_THAT(Trace(), HasSubstr("a launch of GamutCompressionKernelReinhard with arguments that "
                                 "are not its own\r\n"));
  EXPECT_EQ(driver_->calls["cuLaunchKernel"], 1);
}

TEST_F(CudaDevices, RefuseMemoryThatIsNotTheirs) {
  QUILLON_NEEDS_PTX();
  driver_->devices.resize(2);
  const auto device = RefHost::OpenCudaDevice(0);
  const auto other = RefHost::OpenCudaDevice(1);
  char byte = 0;
  std::uint64_t memory = 0;
  std::uint64_t foreign = 0;
  ASSERT_EQ(device->Allocate(kBytes, memory), 0);
  ASSERT_EQ(other->Allocate(kBytes, foreign), 0);
  EXPECT_EQ(LaunchOn(*device, foreign), RefHost::kInvalidLaunch);
  EXPECT_THAT(Trace(), HasSubstr("on memory that is not of Scripted\r\n"));
  EXPECT_EQ(device->Upload(&byte, foreign, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device->Download(foreign, &byte, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device->Copy(memory, foreign, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device->Copy(foreign, memory, 1), RefHost::kInvalidLaunch);
  EXPECT_EQ(device->Upload(&byte, memory, kBytes + 1), RefHost::kInvalidLaunch) << "beyond its end";
  EXPECT_EQ(device->Upload(&byte, memory + 8, 1), RefHost::kInvalidLaunch) << "not its begin";
  EXPECT_EQ(LaunchOn(*device, memory), 0);
  device->Free(memory);
  EXPECT_EQ(LaunchOn(*device, memory), RefHost::kInvalidLaunch) << "freed";
  EXPECT_EQ(driver_->calls["cuLaunchKernel"], 1);
  other->Free(foreign);
}

TEST_F(CudaDevices, AreUsedBySeveralThreadsAtOnce) {
  QUILLON_NEEDS_PTX();
  {
    const auto device = RefHost::OpenCudaDevice(0);
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
  EXPECT_THAT(RefHost::ListCudaDevices(), IsEmpty());
  EXPECT_EQ(RefHost::OpenCudaDevice(0), nullptr);
}

}  // namespace
