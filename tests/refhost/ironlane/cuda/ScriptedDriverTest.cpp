// The scripted driver itself: that it refuses what a driver refuses, and does work when it is
// waited for.

#include <array>
#include <string>
#include <vector>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/cuda/CudaApi.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

using ::testing::SizeIs;

constexpr int kInvalidValue = 1;
constexpr int kInvalidDevice = 101;
constexpr int kInvalidContext = 201;
constexpr int kInvalidHandle = 400;
constexpr int kIllegalAddress = 700;

class ScriptedDriver : public CudaTest {
 protected:
  void SetUp() override {
    CudaTest::SetUp();
    driver_->devices.resize(2);
    api_ = RefHost::GetCudaApi();
    for (std::size_t i = 0; i < contexts_.size(); ++i) {
      ASSERT_EQ(api_->DeviceGet(&ids_[i], static_cast<int>(i)), 0);
      ASSERT_EQ(api_->DevicePrimaryCtxRetain(&contexts_[i], ids_[i]), 0);
      ASSERT_EQ(api_->CtxPushCurrent(contexts_[i]), 0);
      ASSERT_EQ(api_->StreamCreate(&streams_[i], 1), 0);
      ASSERT_EQ(api_->MemAlloc(&memory_[i], kBytes), 0);
    }
    // The first one is current, over nothing.
    RefHost::CudaContextHandle popped = nullptr;
    ASSERT_EQ(api_->CtxPopCurrent(&popped), 0);
  }
  void TearDown() override {
    RefHost::CudaContextHandle popped = nullptr;
    while (driver_->current > 0) api_->CtxPopCurrent(&popped);
    for (const RefHost::CudaDeviceId id : ids_) api_->DevicePrimaryCtxRelease(id);
    ExpectNothingHeld();
    CudaTest::TearDown();
  }

  /// Expects this error, and that it is the misuses' last and only one.
  void ExpectRefused(int result, int error) {
    EXPECT_EQ(result, error);
    EXPECT_THAT(driver_->refusals, SizeIs(1));
    driver_->refusals.clear();
  }

  RefHost::CudaFunction Kernel() {
    const std::string text =
        "\x7F"
        "CUBIN 90 " +
        std::string(Ptx());
    EXPECT_EQ(api_->ModuleLoadData(&module_, text.c_str()), 0);
    RefHost::CudaFunction function = nullptr;
    EXPECT_EQ(api_->ModuleGetFunction(&function, module_, "GamutCompressionKernelReinhard"), 0);
    return function;
  }
  static std::string_view Ptx() { return kernels::FindKernelModule("ToneMapMain")->ptx.back(); }

  const RefHost::CudaApi* api_ = nullptr;
  std::array<RefHost::CudaDeviceId, 2> ids_{};
  std::array<RefHost::CudaContextHandle, 2> contexts_{};
  std::array<RefHost::CudaStream, 2> streams_{};
  std::array<std::uint64_t, 2> memory_{};
  RefHost::CudaModule module_ = nullptr;
};

TEST_F(ScriptedDriver, RefusesContextsThatAreNullForeignOrNotCurrent) {
  int foreign = 0;
  ExpectRefused(api_->CtxPushCurrent(nullptr), kInvalidContext);
  ExpectRefused(api_->CtxPushCurrent(reinterpret_cast<RefHost::CudaContextHandle>(&foreign)),
                kInvalidContext);
  RefHost::CudaContextHandle popped = nullptr;
  EXPECT_EQ(api_->CtxPopCurrent(&popped), 0);
  EXPECT_EQ(popped, contexts_[0]);
  ExpectRefused(api_->CtxPopCurrent(&popped), kInvalidContext);
  std::uint64_t pointer = 0;
  ExpectRefused(api_->MemAlloc(&pointer, 1), kInvalidContext);
  ExpectRefused(api_->StreamSynchronize(streams_[0]), kInvalidContext);
}

TEST_F(ScriptedDriver, CountsWhoRetainsAContext) {
  RefHost::CudaContextHandle again = nullptr;
  ASSERT_EQ(api_->DevicePrimaryCtxRetain(&again, ids_[0]), 0);
  EXPECT_EQ(again, contexts_[0]);
  ASSERT_EQ(api_->DevicePrimaryCtxRelease(ids_[0]), 0);
  EXPECT_EQ(api_->StreamSynchronize(streams_[0]), 0) << "held once more";
  ExpectRefused(api_->DevicePrimaryCtxReset(ids_[0]), kInvalidContext);
}

TEST_F(ScriptedDriver, RefusesStreamsThatAreNullOrOfAnotherContext) {
  ExpectRefused(api_->StreamSynchronize(nullptr), kInvalidHandle);
  ExpectRefused(api_->StreamSynchronize(streams_[1]), kInvalidHandle);
  ExpectRefused(api_->MemcpyDtoDAsync(memory_[0], memory_[0], 1, nullptr), kInvalidHandle);
}

TEST_F(ScriptedDriver, RefusesDevicesAndAttributesThatItDoesNotKnow) {
  int value = 0;
  ExpectRefused(api_->DeviceGetAttribute(&value, 9999, ids_[0]), kInvalidValue);
  ExpectRefused(api_->DeviceGetAttribute(&value, 75, ids_[1] + 1), kInvalidDevice);
  ExpectRefused(api_->DeviceGetAttribute(&value, 75, 0), kInvalidDevice);
}

TEST_F(ScriptedDriver, RefusesMemoryOfAnotherDeviceAndBeyondItsEnd) {
  EXPECT_EQ(api_->MemcpyDtoDAsync(memory_[0], memory_[0], kBytes, streams_[0]), 0);
  ExpectRefused(api_->MemcpyDtoDAsync(memory_[0], memory_[1], 1, streams_[0]), kInvalidValue);
  ExpectRefused(api_->MemcpyDtoDAsync(memory_[0], memory_[0], kBytes + 1, streams_[0]),
                kInvalidValue);
  ExpectRefused(api_->MemFree(memory_[1]), kInvalidValue);
}

TEST_F(ScriptedDriver, RefusesLaunchesThatDoNotFit) {
  QUILLON_NEEDS_PTX();
  RefHost::CudaFunction kernel = Kernel();
  std::array<std::uint64_t, 4> frame = {memory_[0], 4, 16, 0};
  std::uint64_t value = 0;
  std::array<void*, 8> arguments = {frame.data(), &value, &value, &value, &value, &value};
  const auto launch = [&](unsigned block, unsigned shared, void** parameters, void** extra) {
    return api_->LaunchKernel(kernel, 1, 1, 1, block, block, 1, shared, streams_[0], parameters,
                              extra);
  };
  EXPECT_EQ(launch(32, 49152, arguments.data(), nullptr), 0);
  ExpectRefused(launch(33, 0, arguments.data(), nullptr), kInvalidValue);
  ExpectRefused(launch(0, 0, arguments.data(), nullptr), kInvalidValue);
  ExpectRefused(launch(1, 49153, arguments.data(), nullptr), kInvalidValue);
  ExpectRefused(launch(1, 0, arguments.data(), arguments.data()), kInvalidValue);
  ExpectRefused(launch(1, 0, nullptr, nullptr), kInvalidValue);
  arguments[6] = &value;
  ExpectRefused(launch(1, 0, arguments.data(), nullptr), kInvalidValue);
  arguments[6] = nullptr;
  arguments[5] = nullptr;
  ExpectRefused(launch(1, 0, arguments.data(), nullptr), kInvalidValue);
}

TEST_F(ScriptedDriver, DoesWorkWhenItIsWaitedForAndEndsContextsWhereItFails) {
  QUILLON_NEEDS_PTX();
  RefHost::CudaFunction kernel = Kernel();
  std::array<std::uint64_t, 4> frame = {memory_[1], 4 + (std::uint64_t{16} << 32U),
                                        4 + (std::uint64_t{1} << 32U), 0};
  std::uint64_t value = 0;
  std::array<void*, 7> arguments = {frame.data(), &value, &value, &value, &value, &value, nullptr};
  ASSERT_EQ(api_->LaunchKernel(kernel, 1, 1, 1, 1, 1, 1, 0, streams_[0], arguments.data(), nullptr),
            0);
  EXPECT_THAT(driver_->launches, SizeIs(0));
  EXPECT_EQ(api_->StreamSynchronize(streams_[0]), kIllegalAddress) << "another device's memory";
  std::uint64_t pointer = 0;
  EXPECT_EQ(api_->MemAlloc(&pointer, 1), kIllegalAddress) << "and everything after it";
  EXPECT_EQ(api_->CtxPushCurrent(contexts_[1]), 0);
  EXPECT_EQ(api_->StreamSynchronize(streams_[1]), 0) << "but not on the other device";
}

}  // namespace
