#include <array>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/orvcore/TraceSettings.h"
#include "tests/devices/EveryDevice.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// What reaches the trace while it lives.
class Listener {
 public:
  Listener() {
    RefHost::SetTraceLevel(7);
    RefHost::SetTraceSink([this](int, std::string_view category, std::string_view text) {
      messages_ += std::string(category) + ": " + std::string(text);
    });
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() {
    RefHost::SetTraceSink({});
    RefHost::SetTraceLevel(0);
  }
  const std::string& Messages() const { return messages_; }

 private:
  std::string messages_;
};

TEST(OpenDevice, GivesNoneWhereThereIsNone) {
  const Listener listener;
  EXPECT_EQ(RefHost::OpenDevice(IL::kPlatformOpenCl, 1000), nullptr);
  EXPECT_THAT(listener.Messages(), HasSubstr("Ironlane: OpenCL : there is no device 1000\r\n"));
  EXPECT_EQ(RefHost::OpenDevice(IL::kPlatformOpenCl, -1), nullptr);
  EXPECT_EQ(RefHost::OpenDevice(0, 0), nullptr);
  EXPECT_EQ(RefHost::OpenDevice(7, 0), nullptr);
}

TEST(LoadKernel, FindsNothingOnADeviceThatIsNotOfThisHost) {
  EXPECT_EQ(IL::LoadKernel(nullptr, "ToneMapMain", "ToneMapKernelITU2446A"), nullptr);
}

class Devices : public OnDevice {};

TEST_P(Devices, SayWhatTheyAre) {
  const RefHost::DeviceInfo& info = device_->Info();
  EXPECT_EQ(info.platformKind, GetParam().platformKind);
  EXPECT_EQ(info.ordinal, GetParam().ordinal);
  EXPECT_THAT(info.name, Not(IsEmpty()));
  EXPECT_THAT(info.platform, Not(IsEmpty()));
  EXPECT_THAT(info.driver, Not(IsEmpty()));
  EXPECT_GT(info.memoryBytes, 1U << 20U);
  const IL::DeviceDescription description = device_->GetDescription();
  EXPECT_EQ(description.platformKind, GetParam().platformKind);
  EXPECT_EQ(description.ordinal, GetParam().ordinal);
  EXPECT_NE(description.contextIdentity, 0U);
}

TEST_P(Devices, AreSharedWhileInUseAndHaveANewIdentityAfterwards) {
  EXPECT_EQ(GetParam().Open(), device_);
  const std::uint64_t identity = device_->GetDescription().contextIdentity;
  device_ = nullptr;
  EXPECT_NE(GetParam().Open()->GetDescription().contextIdentity, identity);
}

TEST_P(Devices, KeepWhatIsPutIntoTheirMemory) {
  std::vector<std::uint8_t> bytes(100003);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 7);
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  ASSERT_EQ(device_->Allocate(bytes.size(), first), 0);
  ASSERT_EQ(device_->Allocate(bytes.size(), second), 0);
  EXPECT_NE(first, second);
  EXPECT_EQ(device_->Upload(bytes.data(), first, bytes.size()), 0);
  EXPECT_EQ(device_->Copy(first, second, bytes.size()), 0);
  std::vector<std::uint8_t> back(bytes.size());
  EXPECT_EQ(device_->Download(second, back.data(), back.size()), 0);
  EXPECT_EQ(back, bytes);
  EXPECT_EQ(device_->Finish(), 0);
  device_->Free(first);
  device_->Free(second);
}

TEST_P(Devices, RefuseMoreMemoryThanThereIs) {
  std::uint64_t pointer = 5;
  EXPECT_EQ(device_->Allocate(std::size_t{1} << 50U, pointer), RefHost::kOutOfDeviceMemory);
  EXPECT_EQ(pointer, 5U);
}

TEST_P(Devices, LoadAKernelOnceAndKnowWhichThereAre) {
  const auto kernel = IL::LoadKernel(device_, "ToneMapMain", "ToneMapKernelITU2446A");
  EXPECT_NE(kernel, nullptr);
  EXPECT_EQ(IL::LoadKernel(device_, "ToneMapMain", "ToneMapKernelITU2446A"), kernel);
  EXPECT_NE(IL::LoadKernel(device_, "ToneMapMain", "ToneMapKernelCARToneCurve"), kernel);
  const Listener listener;
  EXPECT_EQ(IL::LoadKernel(device_, "ToneMapMain", "NoSuchKernel"), nullptr);
  EXPECT_THAT(listener.Messages(), HasSubstr("NoSuchKernel"));
  EXPECT_EQ(IL::LoadKernel(device_, "NoSuchModule", "ToneMapKernelITU2446A"), nullptr);
  EXPECT_THAT(listener.Messages(), HasSubstr("NoSuchModule"));
}

TEST_P(Devices, LoadKernelsOnSeveralThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::array<IL::KernelHandle, 8> kernels{};
  for (auto& kernel : kernels) {
    threads.emplace_back([&kernel, this] {
      kernel = IL::LoadKernel(device_, "ToneMapMain", "ToneMapKernelCARToneCurve");
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& kernel : kernels) EXPECT_EQ(kernel, kernels[0]);
  EXPECT_NE(kernels[0], nullptr);
}

TEST_P(Devices, RefuseLaunchesThatDoNotFit) {
  const auto kernel = IL::LoadKernel(device_, "ToneMapMain", "GamutCompressionKernelReinhard");
  const auto other = IL::LoadKernel(device_, "ToneMapMain", "ToneMapKernelITU2446A");
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  EXPECT_EQ(device_->CreateArguments(nullptr, 4, arguments), RefHost::kInvalidLaunch);
  EXPECT_FALSE(arguments.IsUsable());

  ASSERT_EQ(device_->CreateArguments(kernel, 4, arguments), 0);
  EXPECT_EQ(device_->Launch(kernel, arguments, 1, 1, 1, 1, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(arguments->Finalize(), RefHost::kInvalidLaunch) << "fewer bytes than announced";
  const float value = 1.0F;
  EXPECT_EQ(arguments->SetValueArgument(nullptr, 4, 4), RefHost::kInvalidLaunch);
  EXPECT_EQ(arguments->SetFrameArgument(nullptr), RefHost::kInvalidLaunch);
  EXPECT_EQ(arguments->SetValueArgument(&value, 4, 4), 0);
  EXPECT_EQ(arguments->Finalize(), 0);
  EXPECT_EQ(arguments->SetValueArgument(&value, 4, 4), RefHost::kInvalidLaunch) << "final already";
  EXPECT_EQ(device_->Launch(other, arguments, 1, 1, 1, 1, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Launch(kernel, {}, 1, 1, 1, 1, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Launch(kernel, arguments, 0, 1, 1, 1, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Launch(kernel, arguments, 1, 1, 1, 0, 0), RefHost::kInvalidLaunch);
  EXPECT_EQ(device_->Finish(), 0);
}

INSTANTIATE_TEST_SUITE_P(EveryDevice, Devices, testing::ValuesIn(EveryDevice()), DeviceTestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Devices);

}  // namespace
