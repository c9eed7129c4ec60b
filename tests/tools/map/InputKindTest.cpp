// What a path names, and who is to blame where it names nothing that can be mapped.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/RunQuillon.h"

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class InputKind : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunQuillon({"chart", "--size", "32x32", folder_ / "c.png"}).exitCode, 0);
  }

  std::string File(const std::string& name, const std::string& bytes) {
    WriteFile(folder_ / name, bytes);
    return folder_ / name;
  }

  ScratchFolder folder_;
};

struct Blamed {
  std::string path;
  std::string said;
};

}  // namespace

TEST_F(InputKind, BlamesAnInputThatCannotBeReadWhateverTheOutputIs) {
  std::filesystem::create_symlink("nowhere", folder_ / "link.exr");
  std::filesystem::create_directory(folder_ / "folder.exr");
  const std::vector<Blamed> inputs = {
      {File("empty.exr", ""), "it is empty"},
      {File("text.exr", "no picture at all, only words\n"), "it is no picture and no clip"},
      {File("a.jxl", "\xff\x0a and more of it"), "it is a JPEG XL picture"},
      {File("b.jxl", std::string("\0\0\0\x0cJXL \r\n\x87\n", 12)), "it is a JPEG XL picture"},
      {File("a.jpg", "\xff\xd8\xff\xe0 and more"), "it is a JPEG picture"},
      {File("a.tif", std::string("II*\0 and more", 13)), "it is a TIFF picture"},
      {File("a.webp", std::string("RIFF\0\0\0\0WEBPVP8 ", 16)), "it is a WebP picture"},
      {File("a.heic", std::string("\0\0\0\x18"
                                  "ftypheic\0\0\0\0mif1heic",
                                  24)),
       "it is a HEIC picture"},
      {folder_ / "link.exr", "it is a link to a file that is not there"},
      {folder_ / "folder.exr", "it is a folder"},
      {folder_ / "absent.exr", "there is no such file"},
      {folder_ / "absent.%04d.exr", "there is no picture of this sequence"},
      {"/proc/self/mem", "reading it failed"},
  };
  const std::string good = folder_ / "c.png";
  for (const Blamed& input : inputs) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"map", input.path, folder_ / "o.png"},
          {"map", input.path, folder_ / "o.mp4"},
          {"map", input.path, folder_ / "o.gif"},
          {"inspect", input.path},
          {"compare", input.path, good, folder_ / "o.gif"},
          {"compare", good, input.path}}) {
      const RunResult run = RunQuillon(arguments);
      EXPECT_EQ(run.exitCode, 3) << arguments[0] << ' ' << input.path << ": " << run.err;
      EXPECT_THAT(run.err,
                  AllOf(HasSubstr(input.path), HasSubstr(input.said), Not(HasSubstr("extension"))))
          << arguments[0];
    }
  }
}

TEST_F(InputKind, SaysThatAStillBecomesNoClipAndAClipNoStill) {
  const std::string clip = folder_ / "c.mp4";
  ASSERT_EQ(RunQuillon({"chart", "--video", "--frames", "2", "--size", "64x64", clip}).exitCode, 0);
  const RunResult toStill = RunQuillon({"map", clip, folder_ / "o.png"});
  EXPECT_EQ(toStill.exitCode, 4);
  EXPECT_THAT(toStill.err, AllOf(HasSubstr("c.mp4 is a clip"), HasSubstr("frame.%05d.png")));
  const RunResult toClip = RunQuillon({"map", folder_ / "c.png", folder_ / "o.mp4"});
  EXPECT_EQ(toClip.exitCode, 4);
  EXPECT_THAT(toClip.err,
              AllOf(HasSubstr("c.png is a still"), HasSubstr("choose .exr, .png or .avif")));
}

TEST_F(InputKind, TakesAFileOfThatVeryNameForItself) {
  const std::string odd = folder_ / "x%d.png";
  std::filesystem::copy_file(folder_ / "c.png", odd);
  std::filesystem::copy_file(folder_ / "c.png", folder_ / "x7.png");
  const RunResult inspected = RunQuillon({"inspect", odd});
  EXPECT_EQ(inspected.exitCode, 0) << inspected.err;
  EXPECT_THAT(inspected.out, Not(HasSubstr("sequence")));
  EXPECT_EQ(RunQuillon({"compare", odd, folder_ / "c.png"}).exitCode, 0);

  const std::string out = folder_ / "y%d.png";
  const RunResult mapped = RunQuillon({"map", odd, out});
  EXPECT_EQ(mapped.exitCode, 0) << mapped.err;
  EXPECT_TRUE(std::filesystem::exists(out));

  std::filesystem::remove(odd);
  EXPECT_THAT(RunQuillon({"inspect", odd}).out, HasSubstr("sequence"));
}
