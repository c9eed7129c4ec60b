#include "tests/devices/EveryDevice.h"

namespace {

/// All other tests of devices run on those there are, and are none where there is none.
TEST(Devices, AreThere) {
  EXPECT_FALSE(EveryDevice().empty())
      << "no device that runs kernels; the Debian package pocl-opencl-icd brings one";
}

}  // namespace
