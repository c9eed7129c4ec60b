#include <map>
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/tools/video/ClipFiles.h"
#include "tests/tools/video/FullClips.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/video/ClipReader.h"
#include "tools/quillon/video/ClipWriter.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

constexpr int kFrames = 72;

/// Where a packet lies in its file; its bytes lie there in one piece, but for transport streams.
std::size_t PlaceOf(const std::string& file, const fs::path& clip, AVMediaType type, int number) {
  const auto packets = PacketsOf(clip, type);
  const std::size_t at =
      file.find(packets.at(static_cast<std::size_t>(number)).bytes.substr(0, 24));
  if (at == std::string::npos) throw std::runtime_error("no such packet in the file");
  return at;
}

std::vector<std::string> MapWords(const fs::path& from, const fs::path& to) {
  return {"map", "--overwrite", "--codec", "h264", "--preset", "ultrafast", from, to};
}

RunResult Map(const fs::path& from, const fs::path& to, const std::string& option = {}) {
  auto words = MapWords(from, to);
  if (!option.empty()) words.push_back(option);
  return RunQuillon(words);
}

/// A damaged clip is told of, leaves nothing under the name of the output, and maps as it is where
/// that was asked for.
void ExpectDamaged(const fs::path& clip, const fs::path& out) {
  const RunResult run = Map(clip, out);
  EXPECT_EQ(run.exitCode, 3) << run.err;
  EXPECT_THAT(run.err, HasSubstr(clip.string() + ": it is damaged: "));
  EXPECT_THAT(run.err, Not(HasSubstr("make room")));
  EXPECT_FALSE(fs::exists(out));
  const RunResult kept = Map(clip, out, "--keep-damaged");
  EXPECT_EQ(kept.exitCode, 0) << kept.err;
  EXPECT_THAT(kept.err, HasSubstr("note: " + clip.string() + ": it is damaged: "));
}

class StreamDamage : public testing::Test {
 protected:
  /// A clip with everything, its bytes changed.
  template <class Change>
  fs::path Damaged(const std::string& name, const Change& change) {
    static std::map<std::string, std::string> made;  // by name; making one takes a while
    const fs::path whole = folder_ / ("whole-" + name);
    if (made.count(name) == 0)
      made[name] = ReadFile(MakeClipWithEverything(folder_, name, kFrames));
    std::string bytes = made[name];
    WriteFile(whole, bytes);
    change(bytes, whole);
    WriteFile(folder_ / name, bytes);
    return folder_ / name;
  }

  ScratchFolder folder_;
};

class StreamDamageIn : public StreamDamage, public testing::WithParamInterface<const char*> {
 protected:
  std::string Name() const { return std::string("clip.") + GetParam(); }
};

TEST_P(StreamDamageIn, ThePicturesOfAClipWithSoundIsTold) {
  const auto clip = Damaged(Name(), [](std::string& bytes, const fs::path& whole) {
    const std::size_t at = PlaceOf(bytes, whole, AVMEDIA_TYPE_VIDEO, 31);
    bytes.replace(at + 4, 20, std::string(20, '\x5A'));
  });
  ExpectDamaged(clip, folder_ / "out.mkv");
  ExpectDamaged(clip, folder_ / "out.mp4");
}

TEST_P(StreamDamageIn, EveryPlaceIsToldOrTakesNoFrame) {
  const auto clip = Damaged(Name(), [](std::string&, const fs::path&) {});
  const std::string whole = ReadFile(clip);
  for (std::size_t at = 1000; at + 200 < whole.size(); at += whole.size() / 11) {
    std::string bytes = whole;
    bytes.replace(at, 200, std::string(200, '\0'));
    WriteFile(clip, bytes);
    const RunResult run = Map(clip, folder_ / "out.mkv");
    EXPECT_THAT(run.exitCode, AnyOf(0, 3)) << at << ": " << run.err;
    if (run.exitCode != 0) continue;
    EXPECT_EQ(DecodeClip(folder_ / "out.mkv").size(), std::size_t{kFrames}) << at;
  }
}

TEST_P(StreamDamageIn, ACutFileIsTold) {
  const auto clip = Damaged(
      Name(), [](std::string& bytes, const fs::path&) { bytes.resize(bytes.size() * 6 / 10); });
  for (const std::string option : {"", "--keep-damaged"}) {
    const RunResult run = Map(clip, folder_ / "out.mp4", option);
    if (run.exitCode == 0) {
      // A transport stream does not tell how long it is.
      if (Name() == "clip.ts") continue;
      EXPECT_THAT(run.err, HasSubstr("note: "));
      EXPECT_EQ(option, "--keep-damaged");
    } else {
      EXPECT_EQ(run.exitCode, 3) << run.err;
    }
  }
}

TEST_P(StreamDamageIn, AFileThatIsOverwrittenWhileItIsReadIsNoCrash) {
  const auto clip = Damaged(Name(), [](std::string&, const fs::path&) {});
  const std::size_t size = ReadFile(clip).size();
  const pid_t process = StartQuillon(MapWords(clip, folder_ / "out.mkv"));
  WriteFile(clip, std::string(size, '\x33'));
  EXPECT_THAT(WaitFor(process), AnyOf(0, 3));
}

INSTANTIATE_TEST_SUITE_P(Containers, StreamDamageIn,
                         testing::Values("mp4", "mov", "mkv", "webm", "ts"),
                         [](const auto& info) { return std::string(info.param); });

/// Puts a packet of sound back to the time at which its cluster begins.
void TurnBackSound(std::string& bytes, const fs::path& whole) {
  const std::size_t at = PlaceOf(bytes, whole, AVMEDIA_TYPE_AUDIO, 60);
  bytes[at - 3] = bytes[at - 2] = '\0';
}

TEST_F(StreamDamage, OfSoundNamesItsStreamAndNoDisk) {
  const auto clip = Damaged("clip.mkv", TurnBackSound);
  for (const std::string name : {"out.mkv", "out.mp4"}) {
    ExpectDamaged(clip, folder_ / name);
    EXPECT_THAT(Map(clip, folder_ / "other.mkv").err, HasSubstr("stream 1 (audio, aac)"));
    EXPECT_EQ(PacketsOf(folder_ / name, AVMEDIA_TYPE_AUDIO).size() + 1,
              PacketsOf(clip, AVMEDIA_TYPE_AUDIO).size());
  }
}

TEST_F(StreamDamage, IsToldByAllThatReadClips) {
  const auto clip = Damaged("clip.mkv", [](std::string& bytes, const fs::path& whole) {
    const std::size_t at = PlaceOf(bytes, whole, AVMEDIA_TYPE_VIDEO, 31);
    bytes.replace(at - 40, 200, std::string(200, '\0'));
  });
  const fs::path whole = folder_ / "whole-clip.mkv";
  const std::vector<std::vector<std::string>> runs = {
      {"inspect", "--measure", clip},
      {"inspect", "--sheet", folder_ / "sheet.png", clip},
      {"compare", clip, whole},
      {"compare", whole, clip},
      {"map", "--frames", "0-3", clip, folder_ / "out.mkv"},
      {"map", "--chunk", "1/2", clip, folder_ / "out.mkv"},
      {"map", "--peak", "measure", clip, folder_ / "out.mkv"}};
  for (const auto& words : runs) {
    const RunResult run = RunQuillon(words);
    EXPECT_EQ(run.exitCode, 3) << words[0] << ' ' << words[1] << run.err;
    EXPECT_THAT(run.err, HasSubstr("/clip.mkv: it is damaged: ")) << words[0] << ' ' << words[1];
  }
  const RunResult kept =
      RunQuillon({"map", "--keep-damaged", "--frames", "0-3", clip, folder_ / "out.mkv"});
  EXPECT_EQ(kept.exitCode, 0) << kept.err;
  EXPECT_THAT(kept.err, HasSubstr("note: " + clip.string() + ": it is damaged: "));
  const RunResult measured = RunQuillon(
      {"map", "--keep-damaged", "--overwrite", "--peak", "measure", clip, folder_ / "out.mkv"});
  EXPECT_EQ(measured.exitCode, 0) << measured.err;
}

TEST_F(StreamDamage, OfAHeadThatPromisesAHugePictureIsRefused) {
  const auto clip = Damaged("clip.mp4", [](std::string& bytes, const fs::path&) {
    bytes.replace(bytes.find("hev1") + 4 + 24, 4, "\xFF\xF0\xFF\xF0");
  });
  const RunResult run = Map(clip, folder_ / "out.mkv");
  EXPECT_EQ(run.exitCode, 4) << run.err;
  EXPECT_THAT(run.err, HasSubstr("a picture of 65520x65520 pixels is beyond the limit"));
}

TEST_F(StreamDamage, OfAHeadThatPromisesFramesWithoutEndIsTold) {
  for (const std::size_t field : {8U, 12U}) {  // size of each, or count
    const auto clip = Damaged("clip.mp4", [field](std::string& bytes, const fs::path&) {
      bytes.replace(bytes.find("stsz") + field, 4, "\x7F\xFF\xFF\xFF");
    });
    EXPECT_EQ(Map(clip, folder_ / "out.mkv").exitCode, 3);
  }
}

TEST(ClipReaderLimit, HoldsForTheHeadAndForWhatComesLater) {
  const ScratchFolder folder;
  Encoding encoding = GreyEncoding();
  encoding.codec = VideoCodec::H264;
  encoding.preset = "ultrafast";
  WriteGreyClip(folder / "small.ts", encoding, 10, 300);
  encoding.width = 128;
  WriteGreyClip(folder / "large.ts", encoding, 10, 300);
  EXPECT_THROW(ClipReader(folder / "large.ts", nullptr, 0, DamagePolicy::Stop, 4000), CommandError);
  WriteFile(folder / "both.ts", ReadFile(folder / "small.ts") + ReadFile(folder / "large.ts"));
  ClipReader reader(folder / "both.ts", nullptr, 0, DamagePolicy::GoOn, 4000);
  int frames = 0;
  while (reader.Next()) ++frames;
  EXPECT_EQ(frames, 10);
  EXPECT_GT(reader.Damage().places, 0);
}

TEST(ClipBeginning, InTheMiddleOfAGroupOfPicturesIsNoDamage) {
  const ScratchFolder folder;
  Encoding encoding = GreyEncoding();
  for (const auto codec : {VideoCodec::H264, VideoCodec::Hevc}) {
    encoding.codec = codec;
    encoding.preset = "ultrafast";
    WriteGreyClip(folder / "whole.ts", encoding, 96, 300);
    const auto packets = PacketsOf(folder / "whole.ts", AVMEDIA_TYPE_VIDEO);
    std::string raw;
    for (std::size_t i = 10; i < packets.size(); ++i) raw += packets[i].bytes;
    WriteFile(folder / "cut.bin", raw);
    const std::string whole = ReadFile(folder / "whole.ts");
    // Tables of programs come again every tenth of a second.
    WriteFile(folder / "cut.ts", whole.substr(whole.size() / 4 / 188 * 188));
    std::vector<std::string> names = {"cut.ts"};
    // FFmpeg complains of raw H.265 that begins so, also past the first key frame.
    if (codec == VideoCodec::H264) names.emplace_back("cut.bin");
    for (const std::string& name : names) {
      const RunResult run =
          RunQuillon({"map", "--overwrite", "--codec", "ffv1", folder / name, folder / "out.mkv"});
      EXPECT_EQ(run.exitCode, 0) << name << run.err;
      EXPECT_EQ(run.err, "") << name;
      EXPECT_EQ(DecodeClip(folder / "out.mkv").size(), 48U) << name;
    }
  }
}

AvPacketPtr PacketAt(std::int64_t pts, int flags = 0) {
  AvPacketPtr packet = MakeAvPacket();
  packet->pts = pts;
  packet->flags = flags;
  return packet;
}

AvFramePtr FrameAt(std::int64_t pts) {
  AvFramePtr frame = MakeAvFrame();
  frame->pts = pts;
  return frame;
}

TEST(FramesInFlight, MissesWhatTheDecoderLost) {
  FramesInFlight frames(AV_CODEC_ID_HEVC);
  frames.Send(*PacketAt(40, AV_PKT_FLAG_KEY));
  for (const std::int64_t pts : {20, 80, 60, 100, 120}) frames.Send(*PacketAt(pts));
  EXPECT_EQ(frames.Receive(*FrameAt(40)), 0);  // 20 leads the first key frame
  EXPECT_EQ(frames.Receive(*FrameAt(80)), 1);
  EXPECT_EQ(frames.Receive(*FrameAt(100)), 0);
  EXPECT_EQ(frames.Finish(), 1);
  EXPECT_EQ(frames.Finish(), 0);
}

TEST(FramesInFlight, DoesNotCountTheFieldsOfInterlacedPictures) {
  FramesInFlight frames(AV_CODEC_ID_H264);
  for (const std::int64_t pts : {0, 10, 20, 30}) frames.Send(*PacketAt(pts, AV_PKT_FLAG_KEY));
  for (const std::int64_t pts : {0, 20}) {
    const AvFramePtr frame = FrameAt(pts);
    frame->interlaced_frame = 1;
    EXPECT_EQ(frames.Receive(*frame), 0);
  }
  EXPECT_EQ(frames.Finish(), 0);
}

}  // namespace
