// The binding of NVIDIA's driver against libraries in its place, each in a process of its own.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/gpu/driver/EntryPointNames.h"
#include "tests/gpu/driver/ProbeRun.h"

namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Names = std::vector<std::string>;

/// A driver beside the one that is found by itself.
constexpr const char* kOtherDriverFile = "another-driver.so";

Names Required() {
  return {
#define QUILLON_CUDA_REQUIRED(name) #name,
#define QUILLON_CUDA_OPTIONAL(name)
#include "gpu/CudaDriverEntryPoints.inc"
  };
}

Names Optional() {
  return {
#define QUILLON_CUDA_REQUIRED(name)
#define QUILLON_CUDA_OPTIONAL(name) #name,
#include "gpu/CudaDriverEntryPoints.inc"
  };
}

/// In an order of their own.
Names Sorted(Names names) {
  std::sort(names.begin(), names.end());
  return names;
}

/// The running test's name, fit for a file.
std::string TestName() {
  std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
  std::replace(name.begin(), name.end(), '/', '-');
  return name;
}

/// One call of `InitCudaDriver`.
struct Initialisation {
  unsigned result = 0;
  Names nulls;
  /// Those that point elsewhere than after the first call.
  Names moved;
};

class CudaDriver : public ::testing::Test {
 protected:
  CudaDriver() {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~CudaDriver() override { fs::remove_all(folder_); }

  /// Puts a driver into the folder that lacks these entry points.
  void MakeDriver(const Names& missing = {}) const { MakeDriver(Driver(), missing); }

  static void MakeDriver(const fs::path& path, const Names& missing) {
    std::ifstream file(QUILLON_FULL_DRIVER, std::ios::binary);
    std::string library{std::istreambuf_iterator<char>(file), {}};
    RemoveEntryPoints(library, missing);
    std::ofstream(path, std::ios::binary) << library;
  }

  fs::path Driver() const { return folder_ / kDriverFile; }

  std::vector<Initialisation> Run(int answer = 0,
                                  const std::vector<fs::path>& arguments = {}) const {
    const std::string output = RunProbe(folder_, answer, arguments);
    std::vector<Initialisation> runs;
    std::istringstream words(output);
    for (std::string word, value; words >> word >> value;) {
      if (word == "result") runs.push_back({static_cast<unsigned>(std::stoul(value)), {}, {}});
      if (word == "null" && !runs.empty()) runs.back().nulls.push_back(value);
      if (word == "moved" && !runs.empty()) runs.back().moved.push_back(value);
    }
    return runs;
  }

  const fs::path folder_ = fs::path(testing::TempDir()) / ("quillon-driver-" + TestName());
};

TEST_F(CudaDriver, Has147RequiredAnd303OptionalEntryPoints) {
  EXPECT_THAT(Required(), SizeIs(147));
  EXPECT_THAT(Optional(), SizeIs(303));
  const Names required = Required();
  const Names optional = Optional();
  std::set<std::string> all(required.begin(), required.end());
  all.insert(optional.begin(), optional.end());
  EXPECT_THAT(all, SizeIs(450));
  EXPECT_THAT(all, Contains("GraphConditionalHandleCreate"));
  EXPECT_EQ(std::count_if(all.begin(), all.end(),
                          [](const std::string& name) { return !name.starts_with("cu"); }),
            1);
}

/// Against a library that was not made from the table: its names are those of the second list.
TEST_F(CudaDriver, HasTheNamesThatTheDriverGivesThem) {
  EXPECT_THAT(RequiredEntryPoints(), SizeIs(147));
  EXPECT_THAT(OptionalEntryPoints(), SizeIs(303));
  EXPECT_EQ(Sorted(Required()), Sorted(RequiredEntryPoints()));
  EXPECT_EQ(Sorted(Optional()), Sorted(OptionalEntryPoints()));
}

TEST_F(CudaDriver, LooksUpLastOfTheRequiredWhatOnlyWindowsHas) {
  const Names required = Required();
  EXPECT_THAT(Names(required.end() - 4, required.end()),
              ElementsAre("cuDeviceGetLuid", "cuGraphicsD3D11RegisterResource",
                          "cuD3D11CtxCreate_v2", "cuD3D11GetDevice"));
}

TEST_F(CudaDriver, SetsEveryEntryPointOfAWholeDriver) {
  MakeDriver();
  const auto runs = Run();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_THAT(runs[0].nulls, IsEmpty());
}

TEST_F(CudaDriver, DoesWithoutAllThatIsOptional) {
  MakeDriver(Optional());
  const auto runs = Run();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_EQ(runs[0].nulls, Optional());
}

TEST_F(CudaDriver, DoesWithoutAnyOneThatIsOptional) {
  MakeDriver({"cuGetProcAddress"});
  const auto runs = Run();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_THAT(runs[0].nulls, ElementsAre("cuGetProcAddress"));
}

class CudaDriverWithout : public CudaDriver, public testing::WithParamInterface<std::string> {};

TEST_P(CudaDriverWithout, EndsThere) {
  MakeDriver({GetParam()});
  const auto runs = Run();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 999U);
  const Names required = Required();
  Names after(std::find(required.begin(), required.end(), GetParam()), required.end());
  const Names optional = Optional();
  after.insert(after.end(), optional.begin(), optional.end());
  EXPECT_EQ(runs[0].nulls, after) << "those before it are set";
}

INSTANTIATE_TEST_SUITE_P(EachRequiredEntryPoint, CudaDriverWithout, testing::ValuesIn(Required()),
                         [](const auto& info) { return info.param; });

TEST_F(CudaDriver, GivesBackWhatInitialisingGaveAndLooksUpNothingElse) {
  MakeDriver();
  for (const int answer : {1, 3, 100, 803, 999, 12345, -1}) {
    const auto runs = Run(answer);
    ASSERT_THAT(runs, SizeIs(1));
    EXPECT_EQ(runs[0].result, static_cast<unsigned>(answer));
    EXPECT_THAT(runs[0].nulls, SizeIs(450));
  }
}

TEST_F(CudaDriver, IsTheLibraryThatTheNameNames) {
  MakeDriver(folder_ / kOtherDriverFile, {});
  std::ofstream(Driver()) << "no library";
  const auto runs = Run(0, {folder_ / kOtherDriverFile});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 999U) << "by its own name";
  EXPECT_EQ(runs[1].result, 0U) << "by another";
  EXPECT_THAT(runs[1].nulls, IsEmpty());
}

/// The second driver lacks one entry point in the middle of the required.
TEST_F(CudaDriver, IsLookedUpAnewByEveryCallAndNothingIsClearedBefore) {
  const Names required = Required();
  const std::string missing = required[70];
  MakeDriver();
  MakeDriver(folder_ / kOtherDriverFile, {missing});
  const auto runs = Run(0, {folder_ / kOtherDriverFile});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_THAT(runs[0].nulls, IsEmpty());
  EXPECT_EQ(runs[1].result, 999U);
  EXPECT_THAT(runs[1].nulls, ElementsAre(missing)) << "those after it are as they were";
  EXPECT_THAT(Names(runs[1].moved.begin(), runs[1].moved.end()),
              ElementsAreArray(required.begin(), required.begin() + 70))
      << "those before it are the second driver's";
}

TEST_F(CudaDriver, KeepsWhatItHasWhereTheNextDriverIsNone) {
  MakeDriver();
  std::ofstream(folder_ / kOtherDriverFile) << "no library";
  auto runs = Run(0, {folder_ / kOtherDriverFile});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[1].result, 999U);
  EXPECT_THAT(runs[1].nulls, IsEmpty());
  EXPECT_THAT(runs[1].moved, IsEmpty());

  MakeDriver(folder_ / kOtherDriverFile, {"cuInit"});
  runs = Run(0, {folder_ / kOtherDriverFile});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[1].result, 999U);
  EXPECT_THAT(runs[1].nulls, ElementsAre("cuInit"));
  EXPECT_THAT(runs[1].moved, IsEmpty());
}

TEST_F(CudaDriver, IsNoneWithoutCuInit) {
  MakeDriver({"cuInit"});
  const auto runs = Run();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 999U);
  EXPECT_THAT(runs[0].nulls, SizeIs(451));
}

TEST_F(CudaDriver, IsNoneWhereThereIsNoLibrary) {
  std::ofstream(Driver()) << "no library";
  const auto runs = Run();
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 999U);
  EXPECT_THAT(runs[0].nulls, SizeIs(451));
}

TEST_F(CudaDriver, MayBeInitialisedAgain) {
  MakeDriver();
  std::ofstream(folder_ / "other") << "any file";
  const auto runs = Run(0, {folder_ / "other", folder_ / "another"});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_EQ(runs[1].result, 0U);
  EXPECT_THAT(runs[1].nulls, IsEmpty());
}

TEST_F(CudaDriver, StaysOpenWhenItsFileDisappears) {
  MakeDriver();
  const fs::path gone = folder_ / "gone";
  const auto runs = Run(0, {Driver(), gone});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_FALSE(fs::exists(Driver()));
  EXPECT_EQ(runs[1].result, 0U) << "the process has it open still";
  EXPECT_THAT(runs[1].nulls, IsEmpty());
}

TEST_F(CudaDriver, IsFoundWhenItComesAfterACallThatFoundNone) {
  std::ofstream(Driver()) << "no library";
  const fs::path coming = folder_ / "coming";
  MakeDriver(coming, {});
  const auto runs = Run(0, {coming, Driver()});
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 999U);
  EXPECT_THAT(runs[0].nulls, SizeIs(451));
  EXPECT_EQ(runs[1].result, 0U);
  EXPECT_THAT(runs[1].nulls, IsEmpty());
}

}  // namespace
