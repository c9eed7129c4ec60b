// The CUDA back end where nothing of the process has opened the driver before.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/ironlane/cuda/CudaDevice.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(CudaDriver, IsTriedAgainWhereItDidNotInitialise) {
  scripted::Driver* driver = FindScriptedDriver();
  ASSERT_NE(driver, nullptr);
  driver->failing = "cuInit";
  driver->error = 100;
  EXPECT_THAT(RefHost::ListCudaDevices(), IsEmpty());
  EXPECT_THAT(RefHost::ListCudaDevices(), SizeIs(1));
  EXPECT_EQ(driver->calls["cuInit"], 2);
  EXPECT_THAT(RefHost::ListCudaDevices(), SizeIs(1));
  EXPECT_EQ(driver->calls["cuInit"], 2);
}

}  // namespace
