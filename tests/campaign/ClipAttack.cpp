#include <algorithm>
#include <fstream>
#include <thread>

#include "tests/campaign/Attack.h"
#include "tests/campaign/AttackedClips.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

/// What is done to a file.
struct DamageDone {
  std::string what;
  /// Only samples and their framing were hit, not what the clip says of itself.
  bool withinMedia = true;
  /// A clip of a container without a length does not tell that its end is missing.
  bool cutsEnd = false;
};

std::size_t BeginOfMedia(const AttackedClip& clip) { return clip.packets.front().position; }

std::size_t EndOfMedia(const AttackedClip& clip) {
  std::size_t end = 0;
  for (const PacketPlace& packet : clip.packets) end = std::max(end, packet.position + packet.size);
  return end;
}

const PacketPlace& PacketOf(const AttackedClip& clip, Dice& dice, bool video) {
  for (;;) {
    const PacketPlace& packet = dice.Of(clip.packets);
    if (packet.isVideo == video) return packet;
  }
}

bool HasOtherPackets(const AttackedClip& clip) {
  return std::any_of(clip.packets.begin(), clip.packets.end(),
                     [](const PacketPlace& packet) { return !packet.isVideo; });
}

void Scramble(std::string& bytes, Dice& dice, std::size_t begin, std::size_t count) {
  for (std::size_t i = begin; i < std::min(begin + count, bytes.size()); ++i)
    bytes[i] = dice.Byte();
}

DamageDone HitPacket(const AttackedClip& clip, std::string& bytes, Dice& dice, bool video) {
  const PacketPlace& packet = PacketOf(clip, dice, video);
  const std::size_t count = std::min<std::size_t>(packet.size, 40);
  Scramble(bytes, dice, packet.position + dice.Below(packet.size - count + 1), count);
  return {video ? "bytes of a picture" : "bytes of sound or text"};
}

DamageDone Zero(const AttackedClip& clip, std::string& bytes, Dice& dice) {
  const std::size_t begin = BeginOfMedia(clip);
  const std::size_t at = begin + dice.Below(EndOfMedia(clip) - begin);
  const std::size_t end = std::min(at + 200, EndOfMedia(clip));
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(at),
            bytes.begin() + static_cast<std::ptrdiff_t>(end), '\0');
  return {"200 zeroed bytes at " + std::to_string(at)};
}

DamageDone Damage(const AttackedClip& clip, std::string& bytes, Dice& dice) {
  switch (dice.Below(8)) {
    case 0:
    case 1:
      return HitPacket(clip, bytes, dice, true);
    case 2:
      return HitPacket(clip, bytes, dice, !HasOtherPackets(clip));
    case 3:
    case 4:
      return Zero(clip, bytes, dice);
    case 5:
      bytes.resize(dice.Below(bytes.size()));
      return {"cut at " + std::to_string(bytes.size()), bytes.size() > BeginOfMedia(clip), true};
    case 6: {
      const std::size_t at = dice.Below(bytes.size());
      const bool media = at >= BeginOfMedia(clip);
      if (dice.OneIn(2)) {
        bytes.erase(at, dice.Between(1, 100));
        return {"bytes taken out at " + std::to_string(at), media};
      }
      bytes.insert(at, dice.Between(1, 100), dice.Byte());
      return {"bytes put in at " + std::to_string(at), media};
    }
    default: {
      const std::size_t at = dice.OneIn(2) ? dice.Below(std::min<std::size_t>(bytes.size(), 2000))
                                           : dice.Below(bytes.size());
      Scramble(bytes, dice, at, dice.Between(1, 8));
      return {"bytes anywhere", false};
    }
  }
}

/// Whether a clip says enough of itself for each missing frame to be noticed. Raw streams say
/// nothing: where a start code is hit, a picture becomes a part of the one before.
bool MustTell(const AttackedClip& clip, const DamageDone& damage) {
  if (clip.name.starts_with("raw.") || !damage.withinMedia) return false;
  return !damage.cutsEnd || !clip.name.ends_with(".ts");
}

/// Overwrites some bytes of a file in place.
void OverwriteSome(const AttackedClip& clip, const fs::path& path, Dice& dice) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  const std::size_t begin = BeginOfMedia(clip);
  file.seekp(static_cast<std::streamoff>(begin + dice.Below(EndOfMedia(clip) - begin)));
  std::string bytes(dice.Between(1, 3000), '\0');
  Scramble(bytes, dice, 0, bytes.size());
  file << bytes;
}

class ClipAttack : public Attack {
 public:
  std::string Name() const override { return "clips"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    const AttackedClip& clip = dice.Of(clips_);
    const fs::path input = folder / clip.name;
    std::string bytes = clip.bytes;
    const bool whileRead = dice.OneIn(10);
    const DamageDone damage =
        whileRead ? DamageDone{"overwritten while it is read"} : Damage(clip, bytes, dice);
    WriteFile(input, bytes);
    const auto words = Words(dice, clip, input, folder);

    AttackedCase attacked;
    attacked.what = damage.what + ": " + CommandText(words);
    WatchedRun started(words);
    if (whileRead) {
      std::this_thread::sleep_for(std::chrono::milliseconds(dice.Below(200)));
      OverwriteSome(clip, input, dice);
    }
    const RunOutcome run = started.Wait();
    attacked.exitCode = run.exitCode;
    Judge(run, clip, damage, words, folder, attacked.verdict);
    return attacked;
  }

 private:
  static std::vector<std::string> Words(Dice& dice, const AttackedClip& clip, const fs::path& input,
                                        const fs::path& folder) {
    switch (dice.Below(16)) {
      case 0:
        return {"inspect", "--measure", input};
      case 1:
        WriteFile(folder / ("whole-" + clip.name), clip.bytes);
        return {"compare", input, folder / ("whole-" + clip.name)};
      case 2:
        return {"map", input, folder / "out.%03d.png"};
      case 3:
        return {"map", "--keep-damaged", "--codec", "ffv1", input, folder / "out.mkv"};
      case 4:
        return {"map", "--peak", "measure", "--codec", "ffv1", input, folder / "out.mkv"};
      case 5:
        return {"map", "--chunk", "2/3", "--codec", "ffv1", input, folder / "out.mkv"};
      case 6:
        return {"map", "--frames", "3-20", "--codec", "ffv1", input, folder / "out.mkv"};
      case 7:
      case 8:
      case 9:
        return {"map", "--preset", "ultrafast", input, folder / "out.mp4"};
      default:
        return {"map", "--codec", "ffv1", input, folder / "out.mkv"};
    }
  }

  static std::size_t FramesOf(const fs::path& output, const fs::path& folder, Verdict& verdict) {
    if (output.extension() == ".png") {
      const auto entries = fs::directory_iterator(folder);
      return static_cast<std::size_t>(
          std::count_if(begin(entries), end(entries),
                        [](const auto& entry) { return entry.path().extension() == ".png"; }));
    }
    try {
      return DecodeClip(output).size();
    } catch (const std::exception& error) {
      verdict.Wrong(std::string("the result is not whole: ") + error.what());
      return 0;
    }
  }

  static std::size_t FramesWanted(const AttackedClip& clip, const std::vector<std::string>& words) {
    if (words[1] == "--chunk") return clip.frames * 2 / 3 - clip.frames / 3;
    if (words[1] == "--frames") return 18;
    return clip.frames;
  }

  static void Judge(const RunOutcome& run, const AttackedClip& clip, const DamageDone& damage,
                    const std::vector<std::string>& words, const fs::path& folder,
                    Verdict& verdict) {
    verdict.RequireDecentEnd(run);
    // A part that is asked for by number may lie beyond what is left of a clip.
    const bool numbered = words[1] == "--chunk" || words[1] == "--frames";
    if (numbered) {
      verdict.RequireCode(run, {0, 2, 3, 4});
    } else if (damage.withinMedia) {
      verdict.RequireCode(run, {0, 3});
    } else {
      verdict.RequireCode(run, {0, 3, 4});
    }
    verdict.RequireBlame(run, {clip.name},
                         {"make room", "another folder", "--codec", "--preset", "writing failed"});
    if (words[0] != "map") return;
    const fs::path output = words.back();
    const bool sequence = output.extension() == ".png";
    if (!sequence) {
      const bool there = fs::exists(output);
      verdict.Require(there == (run.exitCode == 0),
                      there ? "a failed run left a file" : "there is no file, and code 0");
    }
    if (run.exitCode != 0) return;
    const std::size_t frames = FramesOf(output, folder, verdict);
    const std::size_t wanted = FramesWanted(clip, words);
    const bool told = run.err.find("damage") != std::string::npos;
    if (frames < wanted && MustTell(clip, damage) && !told) {
      verdict.Wrong(std::to_string(frames) + " of " + std::to_string(wanted) +
                    " frames, and no word of it");
    }
  }

  ScratchFolder made_;
  std::vector<AttackedClip> clips_ = MakeAttackedClips(made_);
};

}  // namespace

std::unique_ptr<Attack> MakeClipAttack() { return std::make_unique<ClipAttack>(); }
