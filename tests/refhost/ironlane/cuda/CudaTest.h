#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/ironlane/GPUDevice.h"
#include "tests/refhost/ironlane/cuda/ScriptedDriver.h"

/// The driver that the process has open, which is the scripted one; null where it is not.
scripted::Driver* FindScriptedDriver();
void ForgetScriptedDriver();

/// A test on a scripted driver, which has done nothing yet. No test may misuse it.
class CudaTest : public ::testing::Test {
 protected:
  CudaTest();
  ~CudaTest() override;
  void SetUp() override;
  void TearDown() override;

  void ExpectNothingHeld() const;
  /// What reached the trace, and forgets it.
  std::string Trace();
  /// How many files of compiled kernels are kept.
  std::ptrdiff_t KeptBinaries() const;

  scripted::Driver* const driver_ = FindScriptedDriver();
  const std::filesystem::path cache_ =
      std::filesystem::path(testing::TempDir()) /
      (std::string("quillon-cuda-") +
       testing::UnitTest::GetInstance()->current_test_info()->name());

 private:
  std::mutex mutex_;
  std::string trace_;
};

inline constexpr std::size_t kBytes = 4096;

/// Launches a kernel with six arguments over a frame of 4 by 16 floats: 0 or a negative code.
int LaunchOn(RefHost::GPUDevice& device, std::uint64_t memory);

/// Everything that is done with a device, in order; the first negative code ends it.
int UseDevice(RefHost::GPUDevice& device);

/// For tests that need kernels.
inline constexpr const char* kNeedsPtx = "needs nvcc or clang++, which CMake did not find";
#define QUILLON_NEEDS_PTX() \
  if (!RefHost::IsBuiltForCuda()) GTEST_SKIP() << kNeedsPtx
