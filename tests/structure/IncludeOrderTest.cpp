#include <filesystem>
#include <fstream>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/structure/IncludeOrder.h"

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

/// A source tree of one file, gone with the object.
class PlantedTree {
 public:
  PlantedTree(const std::string& file, const std::string& text) {
    fs::create_directories((root_ / file).parent_path());
    std::ofstream(root_ / file) << text;
  }
  ~PlantedTree() { fs::remove_all(root_); }
  PlantedTree(const PlantedTree&) = delete;
  PlantedTree& operator=(const PlantedTree&) = delete;

  const fs::path& Root() const { return root_; }

 private:
  fs::path root_ =
      fs::temp_directory_path() / ("quillon-tree-" + std::to_string(std::random_device{}()));
};

bool AllRunDown(const fs::path& root) {
  for (const Include& include : ReadIncludes(root)) {
    if (!RunsDown(include)) return false;
  }
  return true;
}

}  // namespace

TEST(IncludeOrder, RunsDownEverywhere) {
  std::set<std::string> foldersRead;
  for (const Include& include : ReadIncludes(QUILLON_SOURCE_DIR)) {
    EXPECT_TRUE(RunsDown(include)) << include.file << " includes " << include.target;
    foldersRead.insert(include.file.substr(0, include.file.find('/')));
  }
  EXPECT_THAT(foldersRead, IsSupersetOf({"tools", "mapper", "engine", "cpu", "tonemap", "curves",
                                         "base", "host"}));
}

TEST(IncludeOrder, FindsAPlantedBackEdge) {
  const PlantedTree tree("tonemap/deep/Planted.h",
                         "#pragma once\n#include <vector>\n  #  include \"cpu/QuillonImpl.h\"\n");
  EXPECT_FALSE(AllRunDown(tree.Root()));
}

TEST(IncludeOrder, FindsAPlantedIncludeOfTheReferenceHost) {
  const PlantedTree tree("engine/Planted.cpp", "#include \"refhost/orvmediatypes/H273.h\"\n");
  EXPECT_FALSE(AllRunDown(tree.Root()));
}

TEST(IncludeOrder, TakesAPlantedForwardEdge) {
  const PlantedTree tree("engine/Planted.cpp",
                         "#include \"host/kestrel/CreateFrames.h\"\n// #include \"refhost/X.h\"\n");
  EXPECT_EQ(ReadIncludes(tree.Root()).size(), 1U);
  EXPECT_TRUE(AllRunDown(tree.Root()));
}

TEST(IncludeOrder, IsTheStatedOne) {
  EXPECT_TRUE(RunsDown({"gpu/A.cpp", "cpu/GamutCompression.h"}));
  EXPECT_FALSE(RunsDown({"cpu/A.cpp", "gpu/KernelCache.h"}));
  EXPECT_FALSE(RunsDown({"curves/A.h", "base/Trace.h"}));
  EXPECT_FALSE(RunsDown({"base/A.h", "curves/Three.h"}));
  EXPECT_FALSE(RunsDown({"curves/A.h", "host/pavix/ToneMappingUtils.h"}));
  EXPECT_TRUE(RunsDown({"curves/A.h", "curves/Three.h"}));
  EXPECT_FALSE(RunsDown({"host/A.h", "base/ResultCodes.h"}));
  EXPECT_FALSE(RunsDown({"cpu/A.cpp", "kernels/ToneMapMain.h"}));
  EXPECT_FALSE(RunsDown({"cpu/A.cpp", "tools/quillon/picture/Frames.h"}));
}

TEST(IncludeOrder, OfTheCommandLineRunsFromCommandsToProcess) {
  EXPECT_TRUE(RunsDown({"tools/quillon/main.cpp", "tools/quillon/options/Commands.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/modules/A.h", "tools/quillon/map/MapClip.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/map/A.cpp", "tools/quillon/clip/Pipeline.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/clip/A.cpp", "tools/quillon/picture/Frames.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/io/A.cpp", "tools/quillon/process/ExitCodes.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/map/A.cpp", "tools/quillon/compare/Compare.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/clip/A.cpp", "tools/quillon/map/MapOptions.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/plot/A.cpp", "tools/quillon/video/ClipTags.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/process/A.cpp", "tools/quillon/io/Still.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/map/A.cpp", "tools/quillon/main.h"}));
}

TEST(IncludeOrder, OfProgramsReachesTheEngineThroughTheMapperAlone) {
  EXPECT_TRUE(RunsDown({"tools/quillon/map/A.cpp", "mapper/Plan.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/map/A.cpp", "refhost/kestrel/SystemFrame.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/map/A.cpp", "host/pavix/IVideoFrame.h"}));
  EXPECT_TRUE(RunsDown({"tools/quillon/map/A.cpp", "curves/St2084.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/map/A.cpp", "engine/Quillon.h"}));
  EXPECT_FALSE(RunsDown({"tools/quillon/map/A.cpp", "tonemap/SupportParams.h"}));
  EXPECT_TRUE(RunsDown({"mapper/A.cpp", "engine/Quillon.h"}));
  EXPECT_TRUE(RunsDown({"mapper/A.cpp", "tonemap/SupportParams.h"}));
  EXPECT_TRUE(RunsDown({"mapper/A.cpp", "refhost/ironlane/Devices.h"}));
  EXPECT_FALSE(RunsDown({"mapper/A.cpp", "tools/quillon/process/ExitCodes.h"}));
  EXPECT_FALSE(RunsDown({"engine/A.cpp", "mapper/Plan.h"}));
}

TEST(IncludeOrder, RefusesIncludesNotWrittenFromTheRoot) {
  EXPECT_FALSE(RunsDown({"cpu/A.cpp", "QuillonImpl.h"}));
  EXPECT_FALSE(RunsDown({"cpu/A.cpp", "base/../engine/Quillon.h"}));
}

// OpenCL C has no headers of its own.
TEST(IncludeOrder, HasOneSystemHeaderInTheCurvesForTheSquareRoot) {
  std::vector<std::string> includes;
  for (const Include& include : ReadSystemIncludes(QUILLON_SOURCE_DIR)) {
    if (include.file.starts_with("curves/") && !include.file.starts_with("curves/lanes/")) {
      includes.push_back(include.file + " includes " + include.target);
    }
  }
  EXPECT_THAT(includes, ElementsAre("curves/math64.h includes cmath"));
}
