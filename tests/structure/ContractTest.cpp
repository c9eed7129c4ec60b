// The pages on the contract against the tree: what they name is there, and what is marked is named.

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

using Names = std::set<std::string>;

const fs::path kRoot = QUILLON_SOURCE_DIR;

std::string Read(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void AddMatches(const std::string& text, const std::string& expression, Names& names) {
  const std::regex regex(expression);
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    names.insert(match->size() > 2 ? match->str(1) + "." + match->str(2) : match->str(1));
  }
}

std::vector<fs::path> Sources(const fs::path& folder) {
  std::vector<fs::path> sources;
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
    if (entry.is_regular_file()) sources.push_back(entry.path());
  }
  return sources;
}

Names TestsOfTheTree() {
  Names names;
  for (const fs::path& source : Sources("tests")) {
    if (source.extension() != ".cpp") continue;
    AddMatches(Read(source), R"(TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\))", names);
  }
  return names;
}

Names MarkedFiles() {
  Names names;
  for (const char* folder :
       {"engine", "gpu", "cpu", "tonemap", "curves", "base", "host", "kernels"}) {
    for (const fs::path& source : Sources(folder)) {
      if (Read(source).find("Deliberate:") == std::string::npos) continue;
      names.insert(source.lexically_relative(kRoot).generic_string());
    }
  }
  return names;
}

/// What stands in a column of the table of oddities, between backticks. The first column is 1.
Names Column(std::size_t column) {
  Names names;
  std::istringstream lines(Read(kRoot / "docs/decisions/contract.md"));
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("| ")) continue;
    std::istringstream cells(line);
    std::string cell;
    for (std::size_t i = 0; i <= column; ++i) std::getline(cells, cell, '|');
    AddMatches(cell, "`([^`]+)`", names);
  }
  return names;
}

TEST(Contract, NamesTestsThatExist) {
  const Names named = Column(3);
  ASSERT_GT(named.size(), 40U);
  EXPECT_THAT(TestsOfTheTree(), testing::IsSupersetOf(named));
}

TEST(Contract, NamesPlacesThatAreMarked) {
  const Names named = Column(2);
  ASSERT_GT(named.size(), 20U);
  EXPECT_THAT(MarkedFiles(), testing::IsSupersetOf(named));
}

TEST(Contract, LeavesNoMarkedPlaceOut) {
  Names named;
  AddMatches(Read(kRoot / "docs/decisions/contract.md"), "`([^`]+)`", named);
  EXPECT_THAT(named, testing::IsSupersetOf(MarkedFiles()));
}

/// Kernels with the number of their floats, by the table of docs/writing-a-host.md.
std::map<std::string, std::ptrdiff_t> KernelsOfTheGuide() {
  std::map<std::string, std::ptrdiff_t> kernels;
  const std::string text = Read(kRoot / "docs/writing-a-host.md");
  const std::regex row(R"(\| `(\w*Kernel\w*)` \| ([^|]*) \|)");
  for (std::sregex_iterator match(text.begin(), text.end(), row), end; match != end; ++match) {
    const std::string floats = match->str(2);
    kernels[match->str(1)] = std::count(floats.begin(), floats.end(), ',') + 1;
  }
  return kernels;
}

/// The same, by the kernels themselves. Those of BT.2390 share a list.
std::map<std::string, std::ptrdiff_t> KernelsOfTheModule() {
  std::map<std::string, std::ptrdiff_t> kernels;
  const std::string text = Read(kRoot / "kernels/ToneMapMain.cl");
  const auto countFloats = [](const std::string& list) {
    const std::regex argument(R"(\bfloat \w)");
    return std::distance(std::sregex_iterator(list.begin(), list.end(), argument), {});
  };
  const auto shared = text.find("#define QUILLON_BT2390_ARGUMENTS");
  const std::string sharedList = text.substr(shared, text.find("#define", shared + 1) - shared);
  const std::regex kernel(R"(QUILLON_KERNEL (\w+)\(QUILLON_HEAD,([^)]*)\))");
  for (std::sregex_iterator match(text.begin(), text.end(), kernel), end; match != end; ++match) {
    const bool sharesList = match->str(2).find("QUILLON_BT2390") != std::string::npos;
    kernels[match->str(1)] = countFloats(sharesList ? sharedList : match->str(2));
  }
  return kernels;
}

TEST(WritingAHost, ListsEveryKernelWithAsManyFloatsAsItTakes) {
  EXPECT_EQ(KernelsOfTheModule().size(), 7U);
  EXPECT_EQ(KernelsOfTheGuide(), KernelsOfTheModule());
}

}  // namespace
