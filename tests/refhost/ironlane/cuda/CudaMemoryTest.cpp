// The CUDA back end on a scripted driver: memory, streams and transfers.

#include <algorithm>
#include <array>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// With the driver's pools, and without.
class CudaMemory : public CudaTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    CudaTest::SetUp();
    driver_->devices[0].hasPools = GetParam();
    device_ = RefHost::OpenCudaDevice(0);
    ASSERT_NE(device_, nullptr);
  }
  void TearDown() override {
    device_ = nullptr;
    ExpectNothingHeld();
    CudaTest::TearDown();
  }

  std::uint64_t Allocate(std::size_t bytes = kBytes) {
    std::uint64_t pointer = 0;
    EXPECT_EQ(device_->Allocate(bytes, pointer), 0);
    return pointer;
  }
  std::vector<char> Downloaded(std::uint64_t memory) {
    std::vector<char> bytes(kBytes);
    EXPECT_EQ(device_->Download(memory, bytes.data(), kBytes), 0);
    return bytes;
  }

  std::shared_ptr<RefHost::GPUDevice> device_;
};

template <class Function>
void OnAnotherThread(const Function& function) {
  std::thread(function).join();
}

TEST_P(CudaMemory, KeepsWhatIsPutIntoIt) {
  const std::vector<char> bytes(kBytes, 'q');
  const std::uint64_t first = Allocate();
  const std::uint64_t second = Allocate();
  EXPECT_EQ(device_->Upload(bytes.data(), first, kBytes), 0);
  EXPECT_EQ(device_->Copy(first, second, kBytes), 0);
  EXPECT_EQ(Downloaded(second), bytes);
  device_->Free(first);
  device_->Free(second);
}

TEST_P(CudaMemory, IsTakenFromTheDeviceOnceForCallsOfOneSize) {
  QUILLON_NEEDS_PTX();
  ASSERT_EQ(UseDevice(*device_), 0);
  const int reservations = driver_->reservations;
  const int pinned = driver_->calls["cuMemHostRegister"];
  for (int i = 0; i < 3; ++i) {
    // Pools give back when they are waited for.
    EXPECT_EQ(device_->Finish(), 0);
    EXPECT_EQ(UseDevice(*device_), 0);
  }
  EXPECT_EQ(driver_->reservations, reservations);
  EXPECT_EQ(driver_->calls["cuMemHostRegister"], pinned);
}

TEST_P(CudaMemory, IsGivenOutAndFreedWithoutWaiting) {
  QUILLON_NEEDS_PTX();
  for (int i = 0; i < 3; ++i) {
    const std::uint64_t memory = Allocate();
    EXPECT_EQ(LaunchOn(*device_, memory), 0);
    device_->Free(memory);
  }
  EXPECT_EQ(driver_->waits, 0);
  EXPECT_EQ(driver_->reservations, 1);
  EXPECT_EQ(device_->Finish(), 0);
  EXPECT_THAT(driver_->launches, SizeIs(3)) << "all on memory that was there";
}

TEST_P(CudaMemory, FreedByAThreadStaysForTheWorkOfOthers) {
  QUILLON_NEEDS_PTX();
  const std::uint64_t memory = Allocate();
  EXPECT_EQ(LaunchOn(*device_, memory), 0);
  OnAnotherThread([&] {
    device_->Free(memory);
    const std::uint64_t next = Allocate();
    EXPECT_EQ(device_->Upload(std::vector<char>(kBytes).data(), next, kBytes), 0);
    device_->Free(next);
  });
  EXPECT_EQ(device_->Finish(), 0);
  EXPECT_THAT(driver_->launches, SizeIs(1));
}

TEST_P(CudaMemory, IsUsedInTheOrderInWhichThreadsGiveWork) {
  const std::vector<char> first(kBytes, '1');
  const std::vector<char> second(kBytes, '2');
  const std::uint64_t from = Allocate();
  const std::uint64_t to = Allocate();
  ASSERT_EQ(device_->Upload(first.data(), from, kBytes), 0);
  ASSERT_EQ(device_->Copy(from, to, kBytes), 0);
  OnAnotherThread([&] { EXPECT_EQ(Downloaded(to), first) << "written before it is read"; });

  ASSERT_EQ(device_->Copy(from, to, kBytes), 0);
  OnAnotherThread([&] { EXPECT_EQ(device_->Upload(second.data(), from, kBytes), 0); });
  EXPECT_EQ(Downloaded(to), first) << "read before it is written";

  // Through a third thread, that waits for neither.
  ASSERT_EQ(device_->Copy(from, to, kBytes), 0);
  const std::uint64_t last = Allocate();
  OnAnotherThread([&] { ASSERT_EQ(device_->Copy(to, last, kBytes), 0); });
  OnAnotherThread([&] { EXPECT_EQ(Downloaded(last), second); });
  for (const std::uint64_t memory : {from, to, last}) device_->Free(memory);
}

TEST_P(CudaMemory, OfTwoThreadsIsWorkedOnAtTheSameTime) {
  QUILLON_NEEDS_PTX();
  const std::uint64_t memory = Allocate();
  EXPECT_EQ(LaunchOn(*device_, memory), 0);
  OnAnotherThread([&] {
    const std::uint64_t other = Allocate();
    EXPECT_EQ(device_->Upload(std::vector<char>(kBytes).data(), other, kBytes), 0);
    Downloaded(other);
    device_->Free(other);
  });
  EXPECT_THAT(driver_->launches, IsEmpty()) << "no wait of the other thread was for this one";
  EXPECT_EQ(device_->Finish(), 0);
  EXPECT_THAT(driver_->launches, SizeIs(1));
  device_->Free(memory);
}

TEST_P(CudaMemory, IsToldFromOtherFailuresWhereItIsUsedUp) {
  std::uint64_t pointer = 5;
  EXPECT_EQ(device_->Allocate(std::size_t{1} << 50U, pointer), RefHost::kOutOfDeviceMemory);
  EXPECT_EQ(pointer, 5U);
  EXPECT_THAT(Trace(), HasSubstr("CUDA : cuMemAlloc : CUDA_ERROR_OUT_OF_MEMORY\r\n"));
  const std::uint64_t memory = Allocate();
  device_->Free(memory);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutPools, CudaMemory, testing::Bool(),
                         [](const auto& info) { return info.param ? "Pool" : "List"; });

class CudaPool : public CudaTest {};

TEST_F(CudaPool, IsLeftAsItWasFound) {
  // Other users of the process have it too.
  { const auto device = RefHost::OpenCudaDevice(0); }
  EXPECT_EQ(driver_->calls["cuMemPoolSetAttribute"], 2);
  EXPECT_EQ(driver_->calls["cuMemPoolTrimTo"], 1);
}

TEST_F(CudaPool, IsDoneWithoutWhereItCannotBeSetUp) {
  for (const char* function :
       {"cuDeviceGetDefaultMemPool", "cuMemPoolGetAttribute", "cuMemPoolSetAttribute"}) {
    ForgetScriptedDriver();
    driver_->failing = function;
    driver_->error = 801;
    const auto device = RefHost::OpenCudaDevice(0);
    std::uint64_t memory = 0;
    EXPECT_EQ(device->Allocate(kBytes, memory), 0);
    device->Free(memory);
    EXPECT_EQ(driver_->calls["cuMemAlloc"], 1) << function;
    EXPECT_EQ(driver_->calls["cuMemAllocAsync"], 0) << function;
  }
}

TEST_F(CudaPool, InListsGivesWayWhereTheDeviceHasNoMemoryLeft) {
  driver_->devices[0].hasPools = false;
  const auto device = RefHost::OpenCudaDevice(0);
  std::uint64_t memory = 0;
  ASSERT_EQ(device->Allocate(kBytes, memory), 0);
  device->Free(memory);
  driver_->failing = "cuMemAlloc";
  driver_->failingFrom = 2;
  driver_->error = 2;
  EXPECT_EQ(device->Allocate(2 * kBytes, memory), 0) << "after the first was given back";
  EXPECT_EQ(driver_->calls["cuMemFree"], 1);
  EXPECT_THAT(driver_->memory, SizeIs(1));
  device->Free(memory);
}

class CudaTransfers : public CudaTest {
 protected:
  // Five pieces, the last one short, in a ring of three.
  static constexpr std::size_t kRowBytes = 1000;
  static constexpr std::size_t kRows = 4 * 64 + 7;

  void SetUp() override {
    CudaTest::SetUp();
    device_ = RefHost::OpenCudaDevice(0);
    ASSERT_EQ(device_->Allocate(kRowBytes * kRows, memory_), 0);
    std::iota(bytes_.begin(), bytes_.end(), std::uint8_t{0});
    for (std::size_t row = 0; row < kRows; ++row) bytes_[row * kRowBytes] ^= row;
  }
  void TearDown() override {
    device_->Free(memory_);
    device_ = nullptr;
    ExpectNothingHeld();
    CudaTest::TearDown();
  }

  int Upload() { return device_->Upload(bytes_.data(), memory_, bytes_.size()); }
  std::vector<std::uint8_t> Downloaded() {
    std::vector<std::uint8_t> back(bytes_.size());
    EXPECT_EQ(device_->Download(memory_, back.data(), back.size()), 0);
    return back;
  }
  static std::uint8_t* RowAt(const RefHost::RowRing& ring, std::size_t row) {
    return reinterpret_cast<std::uint8_t*>(ring.memory + row % ring.rows * ring.rowBytes);
  }

  std::shared_ptr<RefHost::GPUDevice> device_;
  std::uint64_t memory_ = 0;
  std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(kRowBytes * kRows);
};

TEST_F(CudaTransfers, FillRowsWhileThoseBeforeAreOnTheirWay) {
  std::vector<int> waits;
  std::vector<std::size_t> firsts;
  const auto fill = [&](const RefHost::RowRing& ring, std::size_t first, std::size_t last) {
    EXPECT_LT(ring.rows, kRows) << "no second copy of all";
    waits.push_back(driver_->waits);
    firsts.push_back(first);
    for (std::size_t row = first; row < last; ++row) {
      std::copy_n(bytes_.data() + row * kRowBytes, kRowBytes, RowAt(ring, row));
    }
    return 0;
  };
  ASSERT_EQ(device_->UploadRows(memory_, kRowBytes, kRows, fill), 0);
  EXPECT_EQ(firsts, (std::vector<std::size_t>{0, 64, 128, 192, 256}));
  EXPECT_EQ(waits, (std::vector<int>{0, 0, 0, 1, 2})) << "for a place in the ring alone";
  EXPECT_EQ(Downloaded(), bytes_);
}

TEST_F(CudaTransfers, TakeRowsWhileTheNextAreOnTheirWayAndThoseBeforeAreThere) {
  ASSERT_EQ(Upload(), 0);
  std::vector<std::uint8_t> back(bytes_.size());
  std::vector<int> begun;
  driver_->calls.clear();
  const auto take = [&](const RefHost::RowRing& ring, std::size_t first, std::size_t last) {
    EXPECT_LT(ring.rows, kRows) << "no second copy of all";
    begun.push_back(driver_->calls["cuMemcpyDtoHAsync"]);
    const std::size_t before = first - std::min<std::size_t>(first, 64);
    for (std::size_t row = before; row < last; ++row) {
      std::copy_n(RowAt(ring, row), kRowBytes, back.data() + row * kRowBytes);
    }
    return 0;
  };
  ASSERT_EQ(device_->DownloadRows(memory_, kRowBytes, kRows, take), 0);
  EXPECT_EQ(begun, (std::vector<int>{2, 3, 4, 5, 5}));
  EXPECT_EQ(back, bytes_);
}

TEST_F(CudaTransfers, EndWithTheCodeOfTheFunctionAndNothingOnItsWay) {
  int calls = 0;
  const auto fail = [&](const RefHost::RowRing&, std::size_t, std::size_t) {
    return ++calls == 3 ? -77 : 0;
  };
  EXPECT_EQ(device_->UploadRows(memory_, kRowBytes, kRows, fail), -77);
  EXPECT_EQ(calls, 3);
  calls = 0;
  EXPECT_EQ(device_->DownloadRows(memory_, kRowBytes, kRows, fail), -77);
  EXPECT_EQ(calls, 3);
  ASSERT_EQ(Upload(), 0);
  EXPECT_EQ(Downloaded(), bytes_);
}

TEST_F(CudaTransfers, LeaveNothingOnItsWayWhereTheFunctionThrows) {
  int calls = 0;
  const auto raise = [&](const RefHost::RowRing&, std::size_t, std::size_t) {
    if (++calls == 2) throw std::runtime_error("no memory");
    return 0;
  };
  EXPECT_THROW(device_->UploadRows(memory_, kRowBytes, kRows, raise), std::runtime_error);
  calls = 0;
  EXPECT_THROW(device_->DownloadRows(memory_, kRowBytes, kRows, raise), std::runtime_error);
  ASSERT_EQ(Upload(), 0);
  EXPECT_EQ(Downloaded(), bytes_);
}

TEST_F(CudaTransfers, EndWithTheFailureOfAnyCopyThatWasGivenBefore) {
  std::vector<std::uint8_t> back(bytes_.size());
  driver_->error = 801;
  for (const std::string function : {"cuMemcpyHtoDAsync", "cuMemcpyDtoHAsync"}) {
    const bool isUpload = function == "cuMemcpyHtoDAsync";
    for (int nth = 1; nth <= 5; ++nth) {
      SCOPED_TRACE(function + ' ' + std::to_string(nth));
      int calls = 0;
      driver_->onCall = [&](const std::string& called) {
        if (called == function && ++calls == nth) driver_->failingLater = function;
      };
      EXPECT_EQ(isUpload ? Upload() : device_->Download(memory_, back.data(), back.size()),
                RefHost::kDeviceFailed);
      EXPECT_THAT(Trace(), HasSubstr(isUpload ? "CUDA : an upload : CUDA_ERROR_NOT_SUPPORTED"
                                              : "CUDA : a download : CUDA_ERROR_NOT_SUPPORTED"));
      driver_->onCall = {};
      ASSERT_EQ(Upload(), 0) << "of that call alone";
    }
  }
}

TEST_F(CudaTransfers, OfSeveralThreadsHaveAStageEach) {
  std::vector<std::thread> threads;
  std::array<std::uint64_t, 4> memory{};
  for (auto& mine : memory) {
    threads.emplace_back([&] {
      ASSERT_EQ(device_->Allocate(bytes_.size(), mine), 0);
      std::vector<std::uint8_t> own(bytes_.size(), static_cast<std::uint8_t>(mine >> 4U));
      for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(device_->Upload(own.data(), mine, own.size()), 0);
        std::vector<std::uint8_t> back(own.size());
        ASSERT_EQ(device_->Download(mine, back.data(), back.size()), 0);
        ASSERT_EQ(back, own);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::uint64_t mine : memory) device_->Free(mine);
}

}  // namespace
