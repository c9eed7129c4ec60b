#include <limits>
#include <thread>

#include "gpu/KernelCache.h"
#include "gpu/Kernels.h"
#include "tests/Meeting.h"
#include "tests/host/HostTest.h"

namespace {

using Quillon::KernelCache;
using scripted::DeviceSetup;
using scripted::HandleOfKernel;
using testing::ElementsAre;

constexpr const char* kKernel = "ToneMapKernelITU2446A";

/// A cache of its own and devices that share a cell of it.
class KernelCacheOfADevice : public scripted::HostTest {
 protected:
  IL::KernelHandle Get(const DeviceSetup& setup) {
    const auto device = scripted::MakeDevice(setup);
    const IL::DeviceDescription description{.platformKind = setup.platformKind,
                                            .ordinal = setup.ordinal,
                                            .architectureCode = setup.architectureCode,
                                            .contextIdentity = setup.contextIdentity};
    return cache.Get(kKernel, device, description);
  }
  IL::KernelHandle Get(std::uint64_t identity) { return Get({.contextIdentity = identity}); }

  std::size_t Loads() const { return host.CallsTo({"IL::LoadKernel"}).size(); }

  KernelCache cache;
};

TEST_F(KernelCacheOfADevice, LoadsFromTheModuleByNameAtFirstUse) {
  EXPECT_EQ(Get(7), HandleOfKernel(kKernel));
  EXPECT_THAT(host.Calls(),
              ElementsAre("IL::LoadKernel(device, ToneMapMain, ToneMapKernelITU2446A)"));
}

TEST_F(KernelCacheOfADevice, LoadsAtFirstUseWhateverTheIdentityIs) {
  for (const std::uint64_t identity : {std::uint64_t{0}, ~std::uint64_t{0}}) {
    KernelCache fresh;
    host.Reset();
    EXPECT_EQ(fresh.Get(kKernel, scripted::MakeDevice(), {.contextIdentity = identity}),
              HandleOfKernel(kKernel));
    EXPECT_EQ(Loads(), 1U) << identity;
  }
}

TEST_F(KernelCacheOfADevice, KeepsTheHandleWhileTheIdentityStays) {
  const IL::KernelHandle first = Get(7);
  EXPECT_EQ(Get(7), first);
  EXPECT_EQ(Get(7), first);
  EXPECT_EQ(Loads(), 1U);
}

TEST_F(KernelCacheOfADevice, LoadsAgainWheneverTheIdentityDiffers) {
  int handles[3] = {};
  int loaded = 0;
  host.results.loadKernel = [&](const auto&, std::string_view) { return &handles[loaded++]; };
  EXPECT_EQ(Get(7), &handles[0]);
  EXPECT_EQ(Get(8), &handles[1]);
  EXPECT_EQ(Get(8), &handles[1]);
  EXPECT_EQ(Get(7), &handles[2]) << "a cell keeps one identity";
  EXPECT_EQ(Get(7), &handles[2]);
}

TEST_F(KernelCacheOfADevice, ServesTwoContextsThatTakeTurns) {
  const auto handleOf = [](std::uint64_t identity) {
    return HandleOfKernel(std::to_string(identity));
  };
  host.results.loadKernel = [&](const std::shared_ptr<IL::Device>& device, std::string_view) {
    return handleOf(static_cast<const scripted::Device&>(*device).Setup().contextIdentity);
  };
  for (int turn = 0; turn < 100; ++turn) {
    EXPECT_EQ(Get(7), handleOf(7));
    EXPECT_EQ(Get(8), handleOf(8));
  }
  EXPECT_EQ(Loads(), 200U);
}

TEST_F(KernelCacheOfADevice, KeepsANullHandleForTheSameIdentity) {
  host.FailWithNothing("IL::LoadKernel");
  EXPECT_EQ(Get(7), nullptr);
  EXPECT_EQ(Get(7), nullptr);
  EXPECT_EQ(Loads(), 1U);
  EXPECT_EQ(Get(8), HandleOfKernel(kKernel));
  host.FailWithNothing("IL::LoadKernel");
  EXPECT_EQ(Get(9), nullptr) << "overwritten, null though it is";
  EXPECT_EQ(Get(9), nullptr);
  EXPECT_EQ(Loads(), 3U);
}

TEST_F(KernelCacheOfADevice, IsAsIfNeverUsedAfterAnExceptionAtFirstUse) {
  host.FailWithException("IL::LoadKernel");
  EXPECT_THROW(Get(0), scripted::HostException);
  EXPECT_EQ(Get(0), HandleOfKernel(kKernel));
  EXPECT_EQ(Loads(), 2U);
}

TEST_F(KernelCacheOfADevice, KeepsWhatItHadAfterAnException) {
  const IL::KernelHandle first = Get(7);
  host.FailWithException("IL::LoadKernel");
  EXPECT_THROW(Get(8), scripted::HostException);
  EXPECT_EQ(Get(7), first);
  EXPECT_EQ(Loads(), 2U);
}

TEST_F(KernelCacheOfADevice, HasACellForEachOfFiveKindsAndFourOrdinals) {
  for (int round = 0; round < 2; ++round) {
    for (int kind = 0; kind < 5; ++kind) {
      for (int ordinal = 0; ordinal < 4; ++ordinal) {
        EXPECT_EQ(Get({.platformKind = kind, .ordinal = ordinal, .contextIdentity = 7}),
                  HandleOfKernel(kKernel));
      }
    }
    EXPECT_EQ(Loads(), 20U);
  }
}

TEST_F(KernelCacheOfADevice, LoadsAtEveryUseBeyondItsKindsAndOrdinals) {
  constexpr int kLeast = std::numeric_limits<int>::min();
  constexpr int kMost = std::numeric_limits<int>::max();
  const auto loadAll = [&] {
    std::size_t uses = 0;
    for (const auto& [kind, ordinal] : {std::pair{5, 0},
                                        {-1, 0},
                                        {0, 4},
                                        {4, 4},
                                        {1, -1},
                                        {kLeast, kLeast},
                                        {kMost, kMost},
                                        {kMost, 0},
                                        {0, kMost}}) {
      for (int use = 0; use < 2; ++use, ++uses) {
        if (Get({.platformKind = kind, .ordinal = ordinal, .contextIdentity = 7}) == nullptr) {
          return false;
        }
      }
    }
    return Loads() == uses;
  };
  EXPECT_EXIT(std::_Exit(loadAll() ? 7 : 1), testing::ExitedWithCode(7), "");
}

/// A second use in the midst of the first one's load is what a thread sees that comes just then.
TEST_F(KernelCacheOfADevice, NeverShowsAnIdentityBeforeItsHandle) {
  bool nested = false;
  IL::KernelHandle seen = nullptr;
  host.results.loadKernel = [&](const auto&, std::string_view kernel) {
    if (!std::exchange(nested, true)) seen = Get(7);
    return HandleOfKernel(kernel);
  };
  EXPECT_EQ(Get(7), HandleOfKernel(kKernel));
  EXPECT_EQ(seen, HandleOfKernel(kKernel));
}

TEST_F(KernelCacheOfADevice, GivesEveryThreadTheHandleOfItsOwnContext) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  std::array<int, 2> handles{};
  host.results.loadKernel = [&](const std::shared_ptr<IL::Device>& device, std::string_view) {
    return &handles[static_cast<const scripted::Device&>(*device).Setup().contextIdentity % 2];
  };
  for (int round = 0; round < kRounds; ++round) {
    KernelCache fresh;
    Meeting start(kThreads);
    std::atomic<int> wrong{0};
    {
      std::vector<std::jthread> threads;
      for (std::uint64_t identity = 0; identity < kThreads; ++identity) {
        threads.emplace_back([&, identity] {
          // Half of the rounds all threads share a context, in the others they have two.
          const std::uint64_t own = round % 2 == 0 ? 2 : identity % 2;
          const auto device = scripted::MakeDevice({.contextIdentity = own + 2});
          start.ArriveAndWait();
          for (int use = 0; use < 3; ++use) {
            if (fresh.Get(kKernel, device, {.contextIdentity = own + 2}) != &handles[own % 2]) {
              ++wrong;
            }
          }
        });
      }
    }
    ASSERT_EQ(wrong, 0) << "round " << round;
  }
}

class ProcessWideCaches : public scripted::HostTest {};

TEST_F(ProcessWideCaches, KeepEachKernelByItself) {
  const auto device = scripted::MakeDevice({.platformKind = 4, .ordinal = 3});
  const IL::DeviceDescription description = device->GetDescription();
  host.Reset();
  for (int round = 0; round < 2; ++round) {
    for (const Quillon::KernelSignature* kernel : Quillon::kKernels) {
      EXPECT_EQ(Quillon::GetKernel(*kernel, device, description),
                HandleOfKernel(std::string(kernel->name)));
    }
  }
  EXPECT_THAT(
      host.Calls(),
      ElementsAre(
          "IL::LoadKernel(device, ToneMapMain, GamutCompressionKernelReinhard)",
          "IL::LoadKernel(device, ToneMapMain, GamutCompressionKernelDesaturation)",
          "IL::LoadKernel(device, ToneMapMain, ToneMapKernelITU2390MaxRGBMain)",
          "IL::LoadKernel(device, ToneMapMain, ToneMapKernelITU2390RGBByChannel)",
          "IL::LoadKernel(device, ToneMapMain, ToneMapKernelITU2446A)",
          "IL::LoadKernel(device, ToneMapMain, ToneMapKernelHuePreservationDesaturationMain)",
          "IL::LoadKernel(device, ToneMapMain, ToneMapKernelCARToneCurve)"));
}

}  // namespace
