#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/RunQuillon.h"

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A variable of the environment for as long as this lives.
class Environment {
 public:
  Environment(std::string name, const std::string& value) : name_(std::move(name)) {
    ::setenv(name_.c_str(), value.c_str(), 1);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  ~Environment() { ::unsetenv(name_.c_str()); }

 private:
  std::string name_;
};

/// A table without its remarks, which name the device.
std::string NumbersOf(const std::string& csv) {
  std::istringstream lines(csv);
  std::string numbers;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with('#')) numbers.append(line).append(1, '\n');
  }
  return numbers;
}

class DeviceOption : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RunQuillon({"chart", "--size", "96x54", chart_}).exitCode, 0); }

  RunResult Map(const std::string& device, const std::string& output,
                std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"map", "--device", device, chart_, folder_ / output});
    return RunQuillon(more);
  }

  ScratchFolder folder_;
  /// PoCL's threads are still ending when the leak check at the end of a run stops all threads, and
  /// bring it down; the libraries' own tests look for leaks.
  const Environment leaks_{"ASAN_OPTIONS", "detect_leaks=0"};
  const std::string chart_ = folder_ / "chart.exr";
};

TEST_F(DeviceOption, GivesTheBytesOfTheProcessor) {
  for (const std::string algorithm : {"auto", "hue", "bt2446a", "car", "none"}) {
    for (const std::string gamut : {"none", "reinhard", "desaturate"}) {
      SCOPED_TRACE(testing::Message() << algorithm << " " << gamut);
      const std::vector<std::string> more = {"--algorithm", algorithm, "--gamut", gamut,
                                             "--overwrite"};
      ASSERT_EQ(Map("cpu", "cpu.png", more).exitCode, 0);
      const RunResult run = Map("gpu", "gpu.png", more);
      ASSERT_EQ(run.exitCode, 0) << run.err;
      EXPECT_EQ(ReadFile(folder_ / "gpu.png"), ReadFile(folder_ / "cpu.png"));
    }
  }
}

TEST_F(DeviceOption, IsNamedByExplain) {
  EXPECT_THAT(Map("cpu", "a.png", {"--explain"}).out, HasSubstr("device            cpu\n"));
  EXPECT_THAT(Map("opencl:0", "b.png", {"--explain"}).out,
              HasSubstr("device            opencl:0\n"));
}

TEST_F(DeviceOption, PlotsTheCurveOfADevice) {
  ASSERT_EQ(RunQuillon({"curve", "--algorithm", "hue", folder_ / "cpu.csv"}).exitCode, 0);
  const RunResult run =
      RunQuillon({"curve", "--device", "gpu", "--algorithm", "hue", folder_ / "gpu.csv"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(NumbersOf(ReadFile(folder_ / "gpu.csv")), NumbersOf(ReadFile(folder_ / "cpu.csv")));
}

TEST_F(DeviceOption, RefusesWhatIsNoDevice) {
  for (const std::string device : {"", "GPU", "opencl", "opencl:", "opencl:-1", "opencl:0x",
                                   "cuda:", "vulkan:0", "opencl:99999999999"}) {
    const RunResult run = Map(device, "x.png");
    EXPECT_EQ(run.exitCode, 2) << device;
    EXPECT_THAT(run.err, AllOf(HasSubstr("--device"), HasSubstr("cpu|gpu|opencl:N|cuda:N")));
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "x.png"));
}

TEST_F(DeviceOption, NamesADeviceThatIsNotThere) {
  for (const std::string device : {"opencl:1000", "cuda:1000"}) {
    const RunResult run = Map(device, "x.png");
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_THAT(run.err, AllOf(HasSubstr("--device " + device), HasSubstr("'quillon devices'")));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "x.png"));
  }
}

TEST_F(DeviceOption, NeverFallsBackToTheProcessor) {
  const Environment none("OCL_ICD_VENDORS", folder_ / "no-devices");
  const RunResult devices = RunQuillon({"devices"});
  EXPECT_EQ(devices.exitCode, 0);
  if (devices.out.find("cuda:") != std::string::npos) GTEST_SKIP() << "there is a CUDA device";
  EXPECT_THAT(devices.out, HasSubstr("no GPU was found"));
  const RunResult run = Map("gpu", "x.png");
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, HasSubstr("there is no GPU"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "x.png"));
  EXPECT_EQ(Map("cpu", "x.png").exitCode, 0);
}

TEST_F(DeviceOption, TakesTheNamesThatDevicesLists) {
  const RunResult run = RunQuillon({"devices"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, AllOf(StartsWith("device"), HasSubstr("\nopencl:0 "), HasSubstr(" GiB "),
                             HasSubstr("build")));
}

/// A device that is lost at the n-th call of a function: an error and no file, never a hang.
class LostDevice : public DeviceOption,
                   public ::testing::WithParamInterface<std::pair<const char*, int>> {
 protected:
  const Environment layer_{"OPENCL_LAYERS", QUILLON_FAILING_LAYER};
};

TEST_P(LostDevice, IsAnErrorThatNamesItAndLeavesNoFile) {
  const auto [function, nth] = GetParam();
  const Environment plan("QUILLON_FAIL", function + (" " + std::to_string(nth)));
  const RunResult run = Map("opencl:0", "x.png", {"--gamut", "desaturate", "--algorithm", "hue"});
  EXPECT_THAT(run.exitCode, testing::AnyOf(4, 6)) << run.err;
  EXPECT_THAT(run.err, HasSubstr("OpenCL : ")) << "what the driver said";
  EXPECT_FALSE(std::filesystem::exists(folder_ / "x.png"));
}

TEST_P(LostDevice, IsNoneWhileNothingFails) {
  const RunResult run = Map("opencl:0", "x.png");
  EXPECT_EQ(run.exitCode, 0) << run.err;
}

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, LostDevice,
    ::testing::Values(std::pair("clBuildProgram", 1), std::pair("clBuildProgram", 2),
                      std::pair("clCreateBuffer", 1), std::pair("clCreateBuffer", 2),
                      std::pair("clEnqueueWriteBuffer", 1), std::pair("clEnqueueNDRangeKernel", 1),
                      std::pair("clEnqueueNDRangeKernel", 2), std::pair("clEnqueueReadBuffer", 1)),
    [](const auto& info) {
      return std::string(info.param.first) + "_" + std::to_string(info.param.second);
    });

}  // namespace
