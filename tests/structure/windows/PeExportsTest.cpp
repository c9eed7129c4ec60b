#include <algorithm>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/windows/PeExports.h"

namespace {

std::string Orvcore() {
  std::ifstream file(QUILLON_ORVCORE_LIBRARY, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> NamesOf(const std::string& library) {
  std::vector<std::string> names;
  for (const Export& entry : ReadExports(library)) names.push_back(entry.name);
  return names;
}

TEST(PeExports, LoseOneNameAndKeepAllOthers) {
  std::string library = Orvcore();
  const std::vector<std::string> before = NamesOf(library);
  for (const std::size_t index : {std::size_t{0}, before.size() / 2, before.size() - 1}) {
    std::string without = library;
    RemoveExport(without, before[index]);
    std::vector<std::string> expected = before;
    expected[index] = "";
    EXPECT_EQ(NamesOf(without), expected) << before[index];
  }
}

TEST(PeExports, CannotLoseANameThatTheyDoNotHave) {
  std::string library = Orvcore();
  EXPECT_THROW(RemoveExport(library, "orvcore"), std::runtime_error);
}

TEST(PeExports, AreOfLibrariesAlone) {
  EXPECT_THROW(ReadExports("no library"), std::runtime_error);
  EXPECT_THROW(ReadExports(std::string(1024, '\0')), std::runtime_error);
  EXPECT_THROW(ReadExports(Orvcore().substr(0, 1024)), std::runtime_error);
}

}  // namespace
