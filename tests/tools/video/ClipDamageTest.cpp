#include <gmock/gmock.h>

#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/video/ClipWriter.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

using testing::HasSubstr;

class ClipDamage : public testing::Test {
 protected:
  ClipDamage() { WriteGreyClip(folder_ / "clip.mkv", GreyEncoding(), 48, 300); }

  void ExpectDamaged(const std::string& name, const std::string& sentence) {
    const RunResult run = RunQuillon({"map", folder_ / name, folder_ / "out.mkv"});
    EXPECT_EQ(run.exitCode, 3) << run.err;
    EXPECT_THAT(run.err, HasSubstr(name));
    EXPECT_THAT(run.err, HasSubstr(sentence));
    EXPECT_FALSE(fs::exists(folder_ / "out.mkv"));
  }

  ScratchFolder folder_;
};

/// Where the n-th packet of a stream lies.
std::int64_t PositionOf(const fs::path& path, int number) {
  const ClipInput input = OpenClipInput(path);
  const AvPacketPtr packet = MakeAvPacket();
  for (int i = 0; i <= number; ++i) {
    if (ReadPacket(input, *packet) < 0) throw std::runtime_error("too few packets");
  }
  return packet->pos;
}

TEST_F(ClipDamage, OfACutFileIsTold) {
  const std::string bytes = ReadFile(folder_ / "clip.mkv");
  WriteFile(folder_ / "cut.mkv", bytes.substr(0, bytes.size() / 2));
  ExpectDamaged("cut.mkv", "the file ends early");
  RewriteClip(folder_ / "clip.mkv", folder_ / "clip.mov", nullptr);
  const std::string movie = ReadFile(folder_ / "clip.mov");
  WriteFile(folder_ / "cut.mov", movie.substr(0, movie.size() / 2));
  ExpectDamaged("cut.mov", "check that it is whole");
}

TEST_F(ClipDamage, InMidClipEndsTheRunAndLeavesWhatCameBefore) {
  std::string bytes = ReadFile(folder_ / "clip.mkv");
  const auto at = static_cast<std::size_t>(PositionOf(folder_ / "clip.mkv", 30)) + 40;
  for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(~bytes[at + i]);
  WriteFile(folder_ / "hit.mkv", bytes);
  ExpectDamaged("hit.mkv", "it is damaged: ");
  const std::size_t before = DecodeClip(folder_ / "out.part.mkv").size();
  EXPECT_GE(before, 20U);
  EXPECT_LE(before, 30U);

  const RunResult run = RunQuillon(
      {"map", "--keep-damaged", "--overwrite", folder_ / "hit.mkv", folder_ / "out.mkv"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("note: "));
  EXPECT_THAT(run.err, HasSubstr("damaged place"));
  EXPECT_EQ(DecodeClip(folder_ / "out.mkv").size(), 48U);
}

TEST_F(ClipDamage, OfAnythingElseIsNoCrash) {
  WriteFile(folder_ / "empty.mp4", "");
  WriteFile(folder_ / "text.mkv", std::string(5000, 'x'));
  ExpectDamaged("empty.mp4", "it is empty");
  ExpectDamaged("text.mkv", "it is no picture and no clip that can be read");
  ExpectDamaged("absent.mkv", "there is no such file");
  const RunResult run = RunQuillon({"map", folder_ / "", folder_ / "out.mkv"});
  EXPECT_EQ(run.exitCode, 3);
  const RunResult sequence = RunQuillon({"map", folder_ / "none.%d.png", folder_ / "out.mkv"});
  EXPECT_EQ(sequence.exitCode, 3);
  EXPECT_THAT(sequence.err, HasSubstr("there is no picture of this sequence"));
}

TEST_F(ClipDamage, OfAClipWithoutFramesIsTold) {
  { ClipWriter(folder_ / "none.mkv", GreyEncoding(), nullptr).Finish(); }
  ExpectDamaged("none.mkv", "it has no frames");
}

TEST_F(ClipDamage, IsNotSeenInEveryByteButNeverCrashes) {
  const std::string whole = ReadFile(folder_ / "clip.mkv");
  for (std::size_t at = 100; at < whole.size(); at += whole.size() / 23) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(~bytes[at]);
    WriteFile(folder_ / "hit.mkv", bytes);
    const RunResult run =
        RunQuillon({"map", "--overwrite", folder_ / "hit.mkv", folder_ / "out.mkv"});
    EXPECT_THAT(run.exitCode, testing::AnyOf(0, 2, 3, 4)) << at << ": " << run.err;
  }
}

/// Joins two raw H.264 streams into one file.
void WriteRaw(const fs::path& path, const std::vector<fs::path>& clips) {
  std::string bytes;
  for (const fs::path& clip : clips) {
    for (const StreamPacket& packet : PacketsOf(clip, AVMEDIA_TYPE_VIDEO)) bytes += packet.bytes;
  }
  WriteFile(path, bytes);
}

TEST_F(ClipDamage, OfAChangingSizeNamesFrameAndRemedy) {
  Encoding encoding = GreyEncoding();
  encoding.codec = VideoCodec::H264;
  encoding.preset = "ultrafast";
  // MPEG-TS carries H.264 as it stands in a raw file.
  WriteGreyClip(folder_ / "small.ts", encoding, 10, 300);
  encoding.width = 128;
  WriteGreyClip(folder_ / "large.ts", encoding, 10, 300);
  WriteRaw(folder_ / "both.h264", {folder_ / "small.ts", folder_ / "large.ts"});
  const RunResult run = RunQuillon({"map", folder_ / "both.h264", folder_ / "out.mkv"});
  EXPECT_EQ(run.exitCode, 4) << run.err;
  EXPECT_THAT(run.err, HasSubstr("frame 10 is 128x48 where the clip began as 64x48"));
  EXPECT_THAT(run.err, HasSubstr("--frames 0-9"));
  const RunResult part = RunQuillon(
      {"map", "--frames", "0-9", "--overwrite", folder_ / "both.h264", folder_ / "out.mkv"});
  EXPECT_EQ(part.exitCode, 0) << part.err;
  EXPECT_EQ(DecodeClip(folder_ / "out.mkv").size(), 10U);
}

TEST_F(ClipDamage, OfChangingTagsIsNone) {
  Encoding encoding = GreyEncoding();
  encoding.codec = VideoCodec::H264;
  encoding.preset = "ultrafast";
  WriteGreyClip(folder_ / "pq.ts", encoding, 6, 600);
  encoding.tags.colors.transfer = 18;
  WriteGreyClip(folder_ / "hlg.ts", encoding, 6, 600);
  WriteRaw(folder_ / "both.h264", {folder_ / "pq.ts", folder_ / "hlg.ts"});
  const RunResult run = RunQuillon({"map", folder_ / "both.h264", folder_ / "out.mkv"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const auto frames = DecodeClip(folder_ / "out.mkv");
  ASSERT_EQ(frames.size(), 12U);
  // Code 602 of PQ and code 602 of HLG are different light.
  EXPECT_NE(frames[2].samples, frames[8].samples);
}

}  // namespace
