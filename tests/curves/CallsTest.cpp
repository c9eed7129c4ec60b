// That no curve is left out where curves are compared between languages.

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

std::set<std::string> LinesOf(const std::string& path) {
  std::ifstream file(path);
  std::set<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.insert(line);
  return lines;
}

TEST(CurveCalls, IncludeEveryHeaderOfTheCurves) {
  const std::set<std::string> lines = LinesOf(QUILLON_SOURCE_DIR "/tests/curves/CurveCalls.h");
  std::size_t headers = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLON_SOURCE_DIR "/curves")) {
    if (entry.is_directory()) continue;  // for C++ alone
    const std::string include = "#include \"curves/" + entry.path().filename().string() + "\"";
    EXPECT_TRUE(lines.contains(include)) << include;
    ++headers;
  }
  EXPECT_GE(headers, 16U);
}

}  // namespace
