#include <algorithm>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestName = 255;

/// Names that programs trip over.
const std::vector<std::string>& OddNames() {
  static const std::vector<std::string> names = {
      "-",         "--help",   "-o",     " ",      ".",       "..",    "a b", "a\nb",
      "a\tb",      "\xff\xfe", "\xc3",   "x%d",    "x%05d",   "x%d%d", "%",   "%s%n",
      "100%",      "a:b",      "http:x", "file:x", "con",     "'",     "\"",  "\\",
      "$HOME",     "*",        "?",      "a.part", ".hidden", "a..",   "a.",  "\xe2\x98\x83",
      "e\xcc\x81", "<b>&amp;", "]]>",    "{}",     "a.png",   "a.mkv", "|",   ";",
      "#"};
  return names;
}

std::string RandomName(Dice& dice, std::size_t length) {
  std::string name;
  const bool plain = dice.OneIn(2);
  while (name.size() < length) {
    const char c = plain ? static_cast<char>('a' + dice.Below(26)) : dice.Byte();
    if (c != '\0' && c != '/' && c != '%') name += c;
  }
  return name;
}

class NameAttack : public Attack {
 public:
  NameAttack() {
    MustRun({"chart", "--size", "32x32", made_ / "in.exr"});
    MustRun({"chart", "--video", "--frames", "6", "--size", "64x48", made_ / "in.mp4"});
  }
  std::string Name() const override { return "names"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    const Output kind = dice.Of(kinds_);
    const bool isClip = kind.input == "in.mp4";
    std::string stem = dice.OneIn(2)
                           ? dice.Of(OddNames())
                           : RandomName(dice, dice.OneIn(2) ? dice.Between(1, 30)
                                                            : dice.Between(200, kLongestName + 4));
    const std::string name = stem.substr(0, kLongestName + 4) + kind.extension;
    std::vector<std::string> words = kind.words;
    fs::path input = made_ / kind.input;
    // Names of inputs are attacked in the same way.
    if (dice.OneIn(3) && name.size() <= kLongestName && !stem.ends_with('/')) {
      input = folder / ("in-" + stem.substr(0, 200) + fs::path(kind.input).extension().string());
      std::error_code error;
      fs::copy_file(made_ / kind.input, input, error);
      if (error) input = made_ / kind.input;
    }
    for (std::string& word : words) {
      if (word == "IN") word = input.string();
      if (word == "OUT") word = folder / name;
    }
    AttackedCase attacked;
    attacked.what = CommandText(words);
    const RunOutcome run = WatchedRun(words).Wait();
    attacked.exitCode = run.exitCode;
    Judge(run, folder, name, input, isClip, attacked.verdict);
    return attacked;
  }

 private:
  struct Output {
    std::string extension;
    std::string input;
    std::vector<std::string> words;  ///< with IN and OUT in place of names
  };

  static bool IsSequence(const std::string& name) {
    return name.find("%d") != std::string::npos || name.find("%05d") != std::string::npos;
  }

  static void Judge(const RunOutcome& run, const fs::path& folder, const std::string& name,
                    const fs::path& input, bool isClip, Verdict& verdict) {
    verdict.RequireDecentEnd(run);
    verdict.RequireCode(run, {0, 2, 3, 4, 5});
    std::error_code ignored;
    const bool possible = name.size() <= kLongestName;
    const bool there = fs::exists(folder / name, ignored);
    const bool sequence = isClip && IsSequence(name);
    if (!possible || sequence) {
      verdict.Require(run.exitCode != 0 || sequence, "code 0 for a name that cannot be");
      return;
    }
    verdict.Require(run.exitCode == 0, "a name that can be is refused with code " +
                                           std::to_string(run.exitCode) + ": " +
                                           Shortened(run.err));
    verdict.Require(there == (run.exitCode == 0),
                    there ? "a failed run left a file" : "there is no file, and code 0");
    for (const auto& entry : fs::directory_iterator(folder)) {
      const fs::path other = entry.path().filename();
      verdict.Require(other == fs::path(name) || entry.path() == input ||
                          other.string().ends_with(".levels.json"),
                      "something else is left: " + other.string());
    }
  }

  ScratchFolder made_;
  std::vector<Output> kinds_ = {
      {".png", "in.exr", {"map", "IN", "OUT"}},
      {".avif", "in.exr", {"map", "IN", "OUT"}},
      {".exr", "in.exr", {"map", "IN", "OUT"}},
      {".mkv", "in.mp4", {"map", "--codec", "ffv1", "IN", "OUT"}},
      {".mp4", "in.mp4", {"map", "--preset", "ultrafast", "IN", "OUT"}},
      {".svg", "in.mp4", {"inspect", "--plot", "OUT", "IN"}},
      {".png", "in.mp4", {"inspect", "--plot", "OUT", "IN"}},
      {".json", "in.mp4", {"inspect", "--json", "OUT", "IN"}},
      {".png", "in.mp4", {"inspect", "--sheet", "OUT", "IN"}},
      {".json", "in.exr", {"compare", "--json", "OUT", "IN", "IN"}},
      {".cube", "in.exr", {"lut", "--size", "17", "OUT"}},
      {".csv", "in.exr", {"curve", "OUT"}},
      {".mp4", "in.mp4", {"chart", "--video", "--frames", "3", "--size", "64x48", "OUT"}},
  };
};

}  // namespace

std::unique_ptr<Attack> MakeNameAttack() { return std::make_unique<NameAttack>(); }
