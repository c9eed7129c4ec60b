// Entries of support vectors are called by the names that a curve's header gives them.

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

bool HasBareIndex(const std::string& line) {
  static const std::regex kBareIndex(
      R"([pP]arams(\(\)|\.data\(\))?\s*(\[\s*[0-9]|\.at\(\s*[0-9]))");
  return std::regex_search(line, kBareIndex);
}

TEST(SupportVectors, AreNowhereReadByABareIndex) {
  std::set<std::string> foldersRead;
  for (const char* folder : {"base", "cpu", "engine", "gpu", "refhost", "tonemap", "tools"}) {
    for (const auto& entry :
         fs::recursive_directory_iterator(fs::path(QUILLON_SOURCE_DIR) / folder)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".h" && extension != ".cpp") continue;
      foldersRead.insert(folder);
      std::ifstream file(entry.path());
      int number = 0;
      for (std::string line; std::getline(file, line);) {
        ++number;
        EXPECT_FALSE(HasBareIndex(line)) << entry.path() << ':' << number << ": " << line;
      }
    }
  }
  EXPECT_EQ(foldersRead.size(), 7U);
}

TEST(SupportVectors, WouldBeFoundReadByABareIndex) {
  for (const char* line : {"const float knee = params[1];", "curves.toneParams[ 10 ]",
                           "steps.gamutParams[0] > 1.0F", "params.data()[3]", "params.at(2)"}) {
    EXPECT_TRUE(HasBareIndex(line)) << line;
  }
  for (const char* line : {"params[P::kKnee]", "toneParams[threshold]", "params[i]", "pixel[0]"}) {
    EXPECT_FALSE(HasBareIndex(line)) << line;
  }
}

}  // namespace
