#include "gpu/KernelLaunch.h"
#include "tests/gpu/GPUTest.h"
#include "tests/host/Device.h"

namespace {

using gpu::Lines;
using Quillon::ChooseLaunchGeometry;
using Quillon::LaunchGeometry;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr int kCode = -1;
constexpr int kLeast = std::numeric_limits<int>::min();

class LaunchKernel : public scripted::HostTest {
 protected:
  int Launch(int platformKind = 2) {
    Quillon::KernelArguments arguments;
    arguments.floatCount = 2;
    return Quillon::LaunchKernel(*device, platformKind, scripted::HandleOfKernel("kernel"),
                                 {.blockX = 5, .blockY = 6, .gridX = 7, .gridY = 8}, arguments);
  }

  std::shared_ptr<scripted::Device> device = scripted::MakeDevice();
};

const Lines kAll = {"device.CreateArguments(kernel, 24)",
                    "arguments.SetFrameArgument({0x0, 0x0, pitch 0, flag 0, 0})",
                    "arguments.SetMemoryArgument(0, 0)",
                    "arguments.SetValueArgument(4, 4, 0x00000000)",
                    "arguments.SetValueArgument(4, 4, 0x00000001)",
                    "arguments.SetValueArgument(8, 8, 0x0000000000000000)",
                    "arguments.SetValueArgument(4, 4, 0x00000000)",
                    "arguments.SetValueArgument(4, 4, 0x00000000)",
                    "arguments.Finalize()",
                    "device.Launch(kernel, arguments, 7, 8, 5, 6, 0)"};

const Lines kRelease = {"arguments.DisposeObject()", "arguments.DestroyBlock()"};

TEST_F(LaunchKernel, PushesFinalizesLaunchesAndReleases) {
  EXPECT_EQ(Launch(), 0);
  EXPECT_THAT(host.Calls(), ElementsAreArray(gpu::Joined({kAll, kRelease})));
}

/// Operations that can fail, each with which of its calls, and how many lines come until then.
TEST_F(LaunchKernel, StopsAtTheFirstFailureReturnsItsCodeAndReleases) {
  struct Case {
    const char* operation;
    int nth;
  };
  const std::vector<Case> kCases = {
      {"device.CreateArguments", 1},      {"arguments.SetFrameArgument", 1},
      {"arguments.SetMemoryArgument", 1}, {"arguments.SetValueArgument", 1},
      {"arguments.SetValueArgument", 2},  {"arguments.SetValueArgument", 3},
      {"arguments.SetValueArgument", 4},  {"arguments.SetValueArgument", 5},
      {"arguments.Finalize", 1},          {"device.Launch", 1}};
  for (const int code : {kCode, kLeast}) {
    for (std::size_t index = 0; index < kCases.size(); ++index) {
      SCOPED_TRACE(kCases[index].operation + std::string(" ") + std::to_string(kCases[index].nth));
      host.Reset();
      host.FailWithCode(kCases[index].operation, code, kCases[index].nth);
      EXPECT_EQ(Launch(), code);
      Lines expected(kAll.begin(), kAll.begin() + static_cast<std::ptrdiff_t>(index) + 1);
      if (index > 0) expected = gpu::Joined({expected, kRelease});
      EXPECT_THAT(host.Calls(), ElementsAreArray(expected));
    }
  }
}

TEST_F(LaunchKernel, StopsAtAFailedAuxiliaryValueToo) {
  host.FailWithCode("arguments.SetValueArgument", kCode);
  EXPECT_EQ(Launch(1), kCode);
  EXPECT_EQ(host.CallsTo({"arguments.Set"}).size(), 2U);
  EXPECT_THAT(host.CallsTo({"arguments.Finalize", "device.Launch"}), IsEmpty());
}

TEST_F(LaunchKernel, GoesOnAfterEveryLeastPositiveCode) {
  for (const char* operation :
       {"device.CreateArguments", "arguments.SetFrameArgument", "arguments.SetMemoryArgument",
        "arguments.SetValueArgument", "arguments.Finalize"}) {
    host.Reset();
    host.FailWithCode(operation, 1);
    EXPECT_EQ(Launch(), 0) << operation;
    EXPECT_THAT(host.Calls(), ElementsAreArray(gpu::Joined({kAll, kRelease}))) << operation;
  }
}

TEST_F(LaunchKernel, TakesPositiveCodesForSuccess) {
  host.FailWithCode("device.CreateArguments", 1);
  host.FailWithCode("arguments.SetFrameArgument", 2);
  host.FailWithCode("arguments.SetValueArgument", 3, 3);
  host.FailWithCode("arguments.Finalize", 4);
  host.FailWithCode("device.Launch", 5);
  EXPECT_EQ(Launch(), 5) << "the launch's own";
  EXPECT_THAT(host.Calls(), ElementsAreArray(gpu::Joined({kAll, kRelease})));
}

TEST_F(LaunchKernel, RaisesTheNullHandleExceptionWithoutAnArgumentSet) {
  host.FailWithNothing("device.CreateArguments");
  EXPECT_THROW(Launch(), scripted::NullHandleException);
  EXPECT_THAT(host.CallsTo({"arguments", "device.Launch"}), IsEmpty());
}

TEST_F(LaunchKernel, ReleasesTheArgumentsWhenAnyCallThrows) {
  for (const char* operation :
       {"device.CreateArguments", "arguments.SetFrameArgument", "arguments.SetMemoryArgument",
        "arguments.SetValueArgument", "arguments.Finalize", "device.Launch"}) {
    host.Reset();
    const scripted::Inventory before = scripted::TakeInventory();
    host.FailWithException(operation);
    EXPECT_THROW(Launch(), scripted::HostException) << operation;
    EXPECT_EQ(scripted::TakeInventory(), before) << operation;
  }
}

std::array<std::uint32_t, 4> Numbers(const LaunchGeometry& geometry) {
  return {geometry.blockX, geometry.blockY, geometry.gridX, geometry.gridY};
}

TEST(LaunchGeometry, FollowsThePlatformBeforeTheArchitecture) {
  for (int architecture = -1; architecture < 10; ++architecture) {
    EXPECT_THAT(
        Numbers(ChooseLaunchGeometry({.platformKind = 2, .architectureCode = architecture}, 33, 7)),
        ElementsAre(1, 1, 33, 7));
    EXPECT_THAT(
        Numbers(ChooseLaunchGeometry({.platformKind = 3, .architectureCode = architecture}, 33, 7)),
        ElementsAre(16, 16, 3, 1));
  }
}

TEST(LaunchGeometry, FollowsTheArchitectureOnAllOtherPlatforms) {
  for (const int kind : {0, 1, 4, 5, -1, kLeast}) {
    const auto choose = [&](int architecture) {
      return Numbers(
          ChooseLaunchGeometry({.platformKind = kind, .architectureCode = architecture}, 65, 17));
    };
    EXPECT_THAT(choose(1), ElementsAre(64, 1, 2, 17));
    for (const int square : {3, 5, 6}) EXPECT_THAT(choose(square), ElementsAre(16, 16, 5, 2));
    for (const int single : {0, 2, 4, 7, 8, -1, kLeast}) {
      EXPECT_THAT(choose(single), ElementsAre(1, 1, 65, 17));
    }
  }
}

TEST(LaunchGeometry, RoundsUpWithoutOverflow) {
  constexpr std::uint32_t kMost = ~0U;
  EXPECT_THAT(Numbers(ChooseLaunchGeometry({.platformKind = 3}, kMost, kMost - 15)),
              ElementsAre(16, 16, 0x10000000U, 0x0FFFFFFFU));
}

}  // namespace
