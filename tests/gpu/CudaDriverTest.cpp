// The binding of NVIDIA's driver against libraries in its place, each in a process of its own.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Names = std::vector<std::string>;

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

/// One call of `InitCudaDriver`.
struct Initialisation {
  unsigned result = 0;
  Names nulls;
};

class CudaDriver : public ::testing::Test {
 protected:
  CudaDriver() {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~CudaDriver() override { fs::remove_all(folder_); }

  /// Puts a driver into the folder that lacks these entry points.
  void MakeDriver(const Names& missing = {}) const {
    std::ifstream file(QUILLON_FULL_DRIVER, std::ios::binary);
    std::string library{std::istreambuf_iterator<char>(file), {}};
    for (const std::string& name : missing) {
      // By another name it is not found.
      const std::string entry = '\0' + name + '\0';
      auto at = library.find(entry);
      ASSERT_NE(at, std::string::npos) << name;
      for (; at != std::string::npos; at = library.find(entry, at)) library[at + 1] = '?';
    }
    std::ofstream(Driver(), std::ios::binary) << library;
  }

  fs::path Driver() const { return folder_ / "libcuda.so.1"; }

  std::vector<Initialisation> Run(const std::string& environment = "",
                                  const std::string& arguments = "") const {
    const std::string command = environment + " LD_LIBRARY_PATH='" + folder_.string() +
                                "':\"$LD_LIBRARY_PATH\" '" QUILLON_PROBE "' " + arguments;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> chunk{};
    while (std::fgets(chunk.data(), chunk.size(), pipe.get()) != nullptr) output += chunk.data();
    std::vector<Initialisation> runs;
    std::istringstream words(output);
    for (std::string word, value; words >> word >> value;) {
      if (word == "result") runs.push_back({static_cast<unsigned>(std::stoul(value)), {}});
      if (word == "null" && !runs.empty()) runs.back().nulls.push_back(value);
    }
    return runs;
  }

  const fs::path folder_ = fs::path(testing::TempDir()) /
                           (std::string("quillon-driver-") +
                            testing::UnitTest::GetInstance()->current_test_info()->name());
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

TEST_F(CudaDriver, EndsAtEachRequiredEntryPointThatIsMissing) {
  const Names required = Required();
  for (auto missing = required.begin(); missing != required.end(); ++missing) {
    SCOPED_TRACE(*missing);
    MakeDriver({*missing});
    const auto runs = Run();
    ASSERT_THAT(runs, SizeIs(1));
    EXPECT_EQ(runs[0].result, 999U);
    Names after(missing, required.end());
    const Names optional = Optional();
    after.insert(after.end(), optional.begin(), optional.end());
    EXPECT_EQ(runs[0].nulls, after) << "those before it are set";
  }
}

TEST_F(CudaDriver, GivesBackWhatInitialisingGaveAndLooksUpNothingElse) {
  MakeDriver();
  const auto runs = Run("QUILLON_CUINIT=100");
  ASSERT_THAT(runs, SizeIs(1));
  EXPECT_EQ(runs[0].result, 100U);
  EXPECT_THAT(runs[0].nulls, SizeIs(450));
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
  std::ofstream(folder_ / "other");
  const auto runs =
      Run("", "'" + (folder_ / "other").string() + "' '" + (folder_ / "another").string() + "'");
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_EQ(runs[1].result, 0U);
  EXPECT_THAT(runs[1].nulls, IsEmpty());
}

TEST_F(CudaDriver, StaysOpenWhenItsFileGoes) {
  MakeDriver();
  const auto runs = Run("", "'" + Driver().string() + "' '" + (folder_ / "gone.so").string() + "'");
  ASSERT_THAT(runs, SizeIs(2));
  EXPECT_EQ(runs[0].result, 0U);
  EXPECT_EQ(runs[1].result, 0U) << "the process has it open still";
  EXPECT_THAT(runs[1].nulls, IsEmpty());
}

}  // namespace
