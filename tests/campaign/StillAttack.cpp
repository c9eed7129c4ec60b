#include <algorithm>
#include <stdexcept>

#include <zlib.h>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillError.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

struct Sample {
  std::string name;
  std::string bytes;
};

/// A Radiance picture of 48 by 40 pixels, run-length coded.
std::string RadianceBytes() {
  std::string bytes = "#?RADIANCE\nEXPOSURE=2\nFORMAT=32-bit_rle_rgbe\n\n-Y 40 +X 48\n";
  for (int y = 0; y < 40; ++y) {
    bytes += {2, 2, 0, 48};
    for (int component = 0; component < 4; ++component) {
      bytes += static_cast<char>(128 + 24);
      bytes += static_cast<char>(100 + component);
      bytes += static_cast<char>(24);
      for (int i = 0; i < 24; ++i) bytes += static_cast<char>(120 + (i + y) % 12);
    }
  }
  return bytes;
}

std::vector<Sample> MakeSamples() {
  const ScratchFolder folder;
  MustRun({"chart", "--size", "96x64", folder / "chart.exr"});
  MustRun({"chart", "--size", "96x64", folder / "pq.png"});
  std::vector<Sample> samples = {{"chart.exr", ReadFile(folder / "chart.exr")},
                                 {"pq.png", ReadFile(folder / "pq.png")},
                                 {"light.hdr", RadianceBytes()}};
  const auto add = [&](const std::string& from, const std::string& name, const std::string& depth) {
    MustRun({"map", "--to", "bt2100-pq", "--depth", depth, folder / from, folder / name});
    samples.push_back({name, ReadFile(folder / name)});
  };
  add("chart.exr", "float.exr", "32");
  add("chart.exr", "deep.png", "16");
  add("chart.exr", "eight.png", "8");
  add("chart.exr", "ten.avif", "10");
  add("chart.exr", "twelve.avif", "12");
  return samples;
}

std::uint32_t BigEndian(const std::string& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    value = value << 8U | static_cast<std::uint8_t>(bytes[at + i]);
  }
  return value;
}

void PutBigEndian(std::string& bytes, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (24 - 8 * i));
}

/// Makes the checks of all chunks right again, so that what they hold is believed.
void MendPngChecks(std::string& bytes) {
  std::size_t at = 8;
  while (at + 12 <= bytes.size()) {
    const std::uint64_t length = BigEndian(bytes, at);
    if (at + 12 + length > bytes.size()) return;
    const auto* chunk = reinterpret_cast<const Bytef*>(bytes.data() + at + 4);
    PutBigEndian(bytes, at + 8 + length,
                 static_cast<std::uint32_t>(crc32(0, chunk, static_cast<uInt>(length + 4))));
    at += 12 + length;
  }
}

/// A number that claims much, at the head of the file.
void ClaimMuch(std::string& bytes, Dice& dice) {
  static const std::vector<std::uint32_t> kClaims = {0x7FFFFFFF, 0xFFFFFFFF, 0x80000000, 0x00FFFFFF,
                                                     0x0000FFFF, 0x00004000, 0};
  const std::size_t at = dice.Below(std::min<std::size_t>(bytes.size() - 4, 500));
  const std::uint32_t claim = dice.Of(kClaims);
  if (dice.OneIn(2)) {
    PutBigEndian(bytes, at, claim);
  } else {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(claim >> (8 * i));
  }
}

void Flip(std::string& bytes, Dice& dice, std::size_t within) {
  for (std::size_t count = dice.Between(1, 6); count > 0; --count) {
    bytes[dice.Below(std::min(within, bytes.size()))] = dice.Byte();
  }
}

std::string Damage(std::string& bytes, Dice& dice) {
  switch (dice.Below(6)) {
    case 0:
      bytes.resize(dice.Below(bytes.size()));
      return "cut";
    case 1:
      Flip(bytes, dice, 400);
      return "bytes of the head";
    case 2:
      Flip(bytes, dice, bytes.size());
      return "bytes anywhere";
    case 3:
      ClaimMuch(bytes, dice);
      return "a claim in the head";
    case 4: {
      const std::size_t at = dice.Below(bytes.size());
      const std::size_t count = std::min(bytes.size() - at, dice.Between(1, 300));
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), count, '\0');
      return "zeroed bytes";
    }
    default: {
      const std::size_t at = dice.Below(bytes.size());
      if (dice.OneIn(2)) {
        bytes.erase(at, dice.Between(1, 64));
        return "bytes taken out";
      }
      bytes.insert(at, dice.Between(1, 64), dice.Byte());
      return "bytes put in";
    }
  }
}

bool IsWholeStill(const fs::path& path) {
  try {
    return ReadStill(path).frame.IsUsable();
  } catch (const StillError&) {
    return false;
  }
}

class StillAttack : public Attack {
 public:
  std::string Name() const override { return "stills"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    const Sample& sample = dice.Of(samples_);
    std::string bytes = sample.bytes;
    const std::string damage = Damage(bytes, dice);
    const bool mended = sample.name.ends_with(".png") && dice.OneIn(2);
    if (mended) MendPngChecks(bytes);
    const fs::path input = folder / sample.name;
    WriteFile(input, bytes);
    const fs::path output = folder / ("out" + dice.Of(extensions_));
    const auto words = Words(dice, input, output, folder);

    AttackedCase attacked;
    attacked.what = damage + (mended ? ", checks mended: " : ": ") + CommandText(words);
    const RunOutcome run = WatchedRun(words).Wait();
    attacked.exitCode = run.exitCode;
    Judge(run, input, output, words[0] == "map", attacked.verdict);
    return attacked;
  }

 private:
  std::vector<std::string> Words(Dice& dice, const fs::path& input, const fs::path& output,
                                 const fs::path& folder) const {
    switch (dice.Below(8)) {
      case 0:
        return {"inspect", input};
      case 1:
        return {"inspect", "--measure", "--json", "-", input};
      case 2:
        WriteFile(folder / "other.exr", samples_.front().bytes);
        return {"compare", input, folder / "other.exr"};
      case 3:
        return {"map", "--from", "bt2100-pq", input, output};
      case 4:
        return {"map", "--peak", "measure", "--explain", input, output};
      default:
        return {"map", input, output};
    }
  }

  static void Judge(const RunOutcome& run, const fs::path& input, const fs::path& output,
                    bool writes, Verdict& verdict) {
    verdict.RequireDecentEnd(run);
    verdict.RequireCode(run, {0, 3, 4});
    verdict.RequireBlame(run, {input.filename().string(), "differ in size"},
                         {"names no clip", "make room", "another folder", "out."});
    if (!writes) return;
    std::error_code ignored;
    const bool there = fs::exists(output, ignored);
    verdict.Require(there == (run.exitCode == 0),
                    there ? "a failed run left a file" : "there is no file, and code 0");
    if (there) verdict.Require(IsWholeStill(output), "the result cannot be read");
    for (const auto& entry : fs::directory_iterator(input.parent_path())) {
      verdict.Require(!entry.path().string().ends_with(".part"), "a temporary file is left");
    }
  }

  std::vector<Sample> samples_ = MakeSamples();
  std::vector<std::string> extensions_ = {".png", ".png", ".exr", ".avif"};
};

}  // namespace

std::unique_ptr<Attack> MakeStillAttack() { return std::make_unique<StillAttack>(); }
