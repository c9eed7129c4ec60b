#include <gtest/gtest.h>

#include "mapper/Device.h"
#include "mapper/Plan.h"
#include "refhost/ironlane/Devices.h"
#include "tests/mapper/OwnPicture.h"

using namespace Quillon::Mapper;  // NOLINT(google-build-using-namespace): all of it is tested

namespace {

TEST(DeviceNames, AreAKindAndANumber) {
  for (const char* name : {"cpu", "gpu", "opencl:0", "cuda:12"}) EXPECT_TRUE(IsDeviceName(name));
  for (const char* wrong : {"", "CPU", "opencl", "opencl:", "opencl:-1", "opencl:+1", "cuda:1x",
                            "opencl:2147483648", "vulkan:0"}) {
    EXPECT_FALSE(IsDeviceName(wrong)) << wrong;
  }
}

TEST(ADevice, ThatIsNotThereIsNotReplaced) {
  const auto none = OpenDevice("opencl:999");
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().code, Code::NoDevice);
  const auto wrong = OpenDevice("vulkan:0");
  ASSERT_FALSE(wrong);
  EXPECT_EQ(wrong.error().code, Code::InvalidArgument);
}

TEST(TheProcessor, IsNoDevice) {
  const auto processor = OpenDevice("cpu");
  ASSERT_TRUE(processor);
  EXPECT_EQ(*processor, nullptr);
  EXPECT_EQ(DeviceName(nullptr), "cpu");
}

TEST(EveryDevice, GivesTheBitsOfTheProcessor) {
  int tried = 0;
  OwnPicture source(kBGRA16, 40, 30);
  source.FillAtRandom(4);
  const Source pq{*ColorSpaceOfName("bt2100-pq"), {}};
  const Target srgb{*ColorSpaceOfName("srgb"), {}};
  const auto onProcessor = Plan::Make(pq, srgb, {}, {1000.0, "given"});
  ASSERT_TRUE(onProcessor);
  OwnPicture expected(kBGRAFloat, 40, 30);
  ASSERT_FALSE(onProcessor->Map(source.Read(), expected.Shown()));
  for (const auto& info : RefHost::ListDevices()) {
    if (!info.obstacle.empty() || !info.isExact) continue;
    const std::string name = RefHost::DeviceName(info.platformKind, info.ordinal);
    auto device = OpenDevice(name);
    ASSERT_TRUE(device) << name << ": " << device.error().trace;
    EXPECT_EQ(DeviceName(device->get()), name);
    const auto plan = Plan::Make(pq, srgb, {}, {1000.0, "given"}, *device);
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->Decide().device, name);
    OwnPicture mapped(kBGRAFloat, 40, 30);
    const auto failure = plan->Map(source.Read(), mapped.Shown());
    ASSERT_FALSE(failure) << name << ": " << failure->message << failure->trace;
    EXPECT_EQ(mapped.Bytes(), expected.Bytes()) << name;
    ++tried;
  }
  if (tried == 0)
    GTEST_SKIP() << "there is no device that runs kernels; pocl-opencl-icd brings one";
}

}  // namespace
