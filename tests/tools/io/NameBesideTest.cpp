#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/ScratchFolder.h"
#include "tools/quillon/io/NameBeside.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

TEST(NameBeside, AppendsToNamesThatHaveRoom) {
  EXPECT_EQ(NameBeside("folder/clip.mp4", "clip", ".part.mp4"), "folder/clip.part.mp4");
  EXPECT_EQ(NameBeside("clip.mp4", "clip", ".part.mp4"), "clip.part.mp4");
}

TEST(NameBeside, CutsLongNamesToWhatTheFolderTakes) {
  const ScratchFolder folder;
  for (const std::size_t length : {246U, 247U, 255U}) {
    const std::string stem(length, 'a');
    const fs::path path = NameBeside(folder / "a", stem, ".part.mp4");
    EXPECT_LE(path.filename().string().size(), 255U);
    EXPECT_EQ(path.filename().string().size() == length + 9, length == 246U);
    EXPECT_TRUE(path.string().ends_with(".part.mp4"));
    EXPECT_TRUE(std::ofstream(path).is_open()) << length;
  }
}

TEST(NameBeside, TellsLongNamesApartAndFindsThemAgain) {
  const std::string start(250, 'a');
  EXPECT_NE(NameBeside("x", start + "b", ".part"), NameBeside("x", start + "c", ".part"));
  EXPECT_EQ(NameBeside("x", start + "b", ".part"), NameBeside("x", start + "b", ".part"));
  EXPECT_THAT(NameBeside("x", std::string(255, 'a'), ".part").string(),
              testing::EndsWith("a~7b04934eeef462a6.part"));
}

TEST(NameBeside, CutsBetweenCharacters) {
  for (const std::size_t before : {0U, 1U, 2U}) {
    std::string stem(before, 'a');
    while (stem.size() < 252) stem += "\xE2\x82\xAC";
    const std::string name = NameBeside("x", stem, ".part").string();
    const std::size_t cut = name.find('~');
    ASSERT_NE(cut, std::string::npos);
    EXPECT_EQ((cut - before) % 3, 0U);
    EXPECT_EQ(name.substr(0, cut), stem.substr(0, cut));
  }
}
