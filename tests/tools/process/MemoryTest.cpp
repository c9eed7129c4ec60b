// How much memory files can make the program take.

#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "tests/tools/RunQuillon.h"
#include "tests/tools/io/PngFile.h"

using namespace Quillon::Cli;

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

/// Far above what the program takes for a small picture, far below what the files claim.
constexpr long kRoomKiB = 512L * 1024;

struct MeasuredRun {
  int exitCode = -1;
  long peakKiB = 0;
  std::string err;
};

MeasuredRun RunMeasured(const std::vector<std::string>& arguments) {
  const ScratchFolder streams;
  const pid_t process = StartQuillon(arguments, streams / "out", streams / "err");
  int status = 0;
  rusage usage{};
  wait4(process, &status, 0, &usage);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, usage.ru_maxrss, ReadFile(streams / "err")};
}

std::string LittleEndian(std::uint32_t value) {
  std::string bytes(4, '\0');
  for (int i = 0; i < 4; ++i)
    bytes[static_cast<std::size_t>(i)] = static_cast<char>(value >> 8 * i);
  return bytes;
}

class Memory : public ::testing::Test {
 protected:
  std::string Chart(const std::string& name) {
    EXPECT_EQ(RunQuillon({"chart", "--size", "96x54", folder_ / name}).exitCode, 0);
    return folder_ / name;
  }

  std::string File(const std::string& name, const std::string& bytes) {
    WriteFile(folder_ / name, bytes);
    return folder_ / name;
  }

  void ExpectRefusedWithinTheRoom(const std::string& path, const std::string& said) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"map", path, folder_ / "o.png"}, {"inspect", path}}) {
      const MeasuredRun run = RunMeasured(arguments);
      EXPECT_EQ(run.exitCode, 3) << path << ": " << run.err;
      EXPECT_THAT(run.err, AllOf(HasSubstr(path), HasSubstr(said)));
      EXPECT_LT(run.peakKiB, kRoomKiB) << path;
    }
  }

  ScratchFolder folder_;
};

/// The bytes with an attribute of an EXR header replaced; both are of one length.
std::string WithBox(std::string bytes, const std::string& name, std::uint32_t right,
                    std::uint32_t bottom) {
  const std::string start = name + std::string("\0box2i\0", 7) + LittleEndian(16);
  const std::size_t at = bytes.find(start);
  EXPECT_NE(at, std::string::npos);
  const std::string box =
      LittleEndian(0) + LittleEndian(0) + LittleEndian(right) + LittleEndian(bottom);
  return bytes.replace(at + start.size(), box.size(), box);
}

}  // namespace

TEST_F(Memory, IsNotTakenForAnAttributeThatTheFileDoesNotHold) {
  const std::string whole = ReadFile(Chart("c.exr"));
  for (const std::string type : {"string", "opaque", "stringvector", "floatvector", "preview"}) {
    std::string bytes = whole;
    bytes.insert(8, "more" + std::string(1, '\0') + type + std::string(1, '\0') +
                        LittleEndian(0x7fffff00) + LittleEndian(0x7ffffe00));
    ExpectRefusedWithinTheRoom(File(type + ".exr", bytes),
                               "its attribute more claims 2147483392 bytes");
  }
}

TEST_F(Memory, IsNotTakenForPixelsThatTheFileDoesNotHold) {
  const std::string exr = ReadFile(Chart("c.exr"));
  ExpectRefusedWithinTheRoom(File("w.exr", WithBox(WithBox(exr, "dataWindow", 15999, 15999),
                                                   "displayWindow", 15999, 15999)),
                             "16000x16000 pixels cannot be in a file of ");

  PngPicture png;
  png.width = png.height = 16000;
  png.bitDepth = 16;
  png.colorType = kRgba;
  png.rows = {Bytes(1000, 0)};
  const Bytes bytes = png.File();
  ExpectRefusedWithinTheRoom(File("w.png", {bytes.begin(), bytes.end()}),
                             "16000x16000 pixels cannot be in a file of ");

  ExpectRefusedWithinTheRoom(
      File("w.hdr", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 16000 +X 16000\nxxxx"),
      "16000 scanlines cannot be in a file of ");
}

TEST_F(Memory, IsNotTakenForTilesThatTheFileDoesNotHold) {
  const std::string whole = ReadFile(Chart("c.exr"));
  for (const std::uint32_t side : {1U << 15U, 1U}) {
    std::string bytes = WithBox(whole, "dataWindow", side == 1 ? 1023 : 95, side == 1 ? 511 : 53);
    bytes[5] = '\x02';  // tiled
    bytes.insert(8, std::string("tiles\0tiledesc\0", 15) + LittleEndian(9) + LittleEndian(side) +
                        LittleEndian(side) + std::string(1, '\0'));
    ExpectRefusedWithinTheRoom(File("t.exr", bytes), "tiles of ");
  }
}

TEST_F(Memory, IsBoundedByALimitOnPixels) {
  for (const std::string name : {"c.exr", "c.png", "c.avif"}) {
    const std::string path = Chart(name);
    const std::string said = "a picture of 96x54 pixels is beyond the limit of 5183";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"map", path, folder_ / "o.png"},
          {"inspect", path},
          {"compare", path, path}}) {
      std::vector<std::string> limited = arguments;
      limited.insert(limited.end(), {"--max-pixels", "5183"});
      const RunResult run = RunQuillon(limited);
      EXPECT_EQ(run.exitCode, 4) << run.err;
      EXPECT_THAT(run.err, AllOf(HasSubstr(path), HasSubstr(said), HasSubstr("--max-pixels")));
    }
    EXPECT_EQ(RunQuillon({"inspect", path, "--max-pixels", "5184"}).exitCode, 0) << name;
  }
  const std::string hdr = File(
      "c.hdr", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 96 +X 54\n" + std::string(20736, '\x40'));
  EXPECT_EQ(RunQuillon({"inspect", "--max-pixels", "5183", hdr}).exitCode, 4);
  EXPECT_EQ(RunQuillon({"inspect", "--max-pixels", "5184", hdr}).exitCode, 0);
}

TEST_F(Memory, IsBoundedByALimitOnPixelsOfClips) {
  const std::string clip = folder_ / "c.mkv";
  ASSERT_EQ(RunQuillon({"chart", "--video", "--frames", "4", "--size", "64x48", clip}).exitCode, 0);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"map", clip, folder_ / "o.mkv"},
        {"map", "--chunk", "1/2", clip, folder_ / "o.mkv"},
        {"inspect", "--sheet", folder_ / "o.png", clip},
        {"compare", clip, clip}}) {
    std::vector<std::string> limited = arguments;
    limited.insert(limited.end(), {"--max-pixels", "3071"});
    const RunResult run = RunQuillon(limited);
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_THAT(run.err, HasSubstr("a picture of 64x48 pixels is beyond the limit of 3071"));
    limited.back() = "3072";
    EXPECT_EQ(RunQuillon(limited).exitCode, 0) << arguments[1];
    std::filesystem::remove(folder_ / "o.mkv");
  }
}

TEST_F(Memory, IsBoundedForThePicturesOfASequenceToo) {
  std::filesystem::copy_file(Chart("c.png"), folder_ / "f.1.png");
  const RunResult run =
      RunQuillon({"map", "--max-pixels", "100", folder_ / "f.%d.png", folder_ / "o.%d.png"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.err, HasSubstr("f.1.png: a picture of 96x54 pixels is beyond the limit of 100"));
}

TEST_F(Memory, IsBoundedByTwoToThe28PixelsUnasked) {
  const std::string avif = ReadFile(Chart("c.avif"));
  const std::string start = std::string("ispe") + std::string(4, '\0');
  const std::size_t at = avif.find(start);
  ASSERT_NE(at, std::string::npos);
  std::string bytes = avif;
  bytes.replace(at + start.size(), 8, std::string("\0\0\x40\0\0\0\x40\x01", 8));  // 16384x16385
  const RunResult run = RunQuillon({"inspect", File("w.avif", bytes)});
  EXPECT_EQ(run.exitCode, 4) << run.err;
  EXPECT_THAT(run.err, HasSubstr("16384x16385 pixels is beyond the limit of 268435456"));
}
