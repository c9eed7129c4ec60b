#include <algorithm>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"

namespace fs = std::filesystem;

namespace {

/// An option of some commands, with values that it takes and values that nobody may take.
struct Option {
  std::string name;
  std::vector<std::string> commands;
  std::vector<std::string> good;  ///< none: a flag
  std::vector<std::string> bad;
};

const std::vector<std::string> kNoInteger = {
    "",    "0x64", "1e3", " 5",  "5 ",  "+5",    "5.5",
    "abc", "-1",   "0",   "nan", "inf", "5,000", "99999999999999999999"};
const std::vector<std::string> kNoNumber = {"",      "nan", "inf",  "-inf", "abc", "1e999",
                                            "0x1p3", "1,5", "-0.5", "1 2",  "9e9"};
const std::vector<std::string> kNoName = {"", "xyz", "SRGB ", "-", "\xff", "none,hue"};

const std::vector<std::string> kMaps = {"map", "curve", "lut"};
const std::vector<std::string> kSpaces = {"srgb",   "bt709",     "p3-d65",
                                          "bt2020", "bt2100-pq", "bt2100-hlg"};
const std::vector<std::string> kCicps = {"9/16/9", "1/13/0", "9/18/9", "12/16/0"};
const std::vector<std::string> kNoCicp = {"",         "9/16",    "9/16/9/1", "a/b/c",
                                          "300/16/9", "9/16/-1", "0x9/16/9", " 9/16/9"};

const std::vector<Option>& Options() {
  static const std::vector<Option> options = {
      {"--to", kMaps, kSpaces, kNoName},
      {"--to-cicp", kMaps, kCicps, kNoCicp},
      {"--from", {"map", "curve", "lut", "inspect"}, kSpaces, kNoName},
      {"--from-cicp", {"map", "curve", "lut", "inspect"}, kCicps, kNoCicp},
      {"--from-a", {"compare"}, kSpaces, kNoName},
      {"--from-cicp-b", {"compare"}, kCicps, kNoCicp},
      {"--peak", {"map"}, {"1000", "metadata", "measure", "scenes", "203.5"}, kNoNumber},
      {"--peak", {"curve", "lut"}, {"1000", "4000.5"}, kNoNumber},
      {"--target-peak", kMaps, {"600", "1", "10000"}, kNoInteger},
      {"--white", {"map", "curve", "lut", "inspect", "compare"}, {"100", "203"}, kNoInteger},
      {"--algorithm",
       kMaps,
       {"auto", "bt2390-maxrgb", "bt2390-rgb", "bt2446a", "hue", "car", "none"},
       kNoName},
      {"--gamut", {"map", "lut"}, {"none", "reinhard", "desaturate"}, kNoName},
      {"--knee", kMaps, {"0", "0.5", "1"}, kNoNumber},
      {"--gain", kMaps, {"1", "0.25", "4"}, kNoNumber},
      {"--preserve", kMaps, {"0", "0.5", "1"}, kNoNumber},
      {"--depth", {"map"}, {"8", "10", "12", "16", "32"}, kNoInteger},
      {"--device",
       {"map", "curve"},
       {"cpu"},
       {"", "cpu ", "opencl", "opencl:", "opencl:-1", "opencl:99", "cuda:99999999999999", "gpu:0"}},
      {"--threads", {"map"}, {"1", "2", "1024"}, kNoInteger},
      {"--explain", {"map", "lut"}, {}, {}},
      {"--overwrite", {"map", "curve", "lut", "inspect", "compare", "chart"}, {}, {}},
      {"--quiet", {"map", "curve", "lut", "inspect", "compare"}, {}, {}},
      {"--codec", {"map"}, {"h264", "ffv1", "prores", "hevc"}, kNoName},
      {"--chroma", {"map"}, {"420", "422", "444", "rgb"}, kNoName},
      {"--quality", {"map"}, {"0", "18", "63"}, kNoNumber},
      {"--preset", {"map"}, {"ultrafast", "medium"}, {"", "xyz", "-1", "ultrafast "}},
      {"--frames",
       {"map"},
       {"0-2", "1,3", "5"},
       {"", "-", "3-1", "0-", "a", "0x1", "0-99999999999", "1,,2", "-1"}},
      {"--chunk", {"map"}, {"1/2", "2/2"}, {"", "0/2", "3/2", "1/0", "a/b", "1", "1/2/3", "-1/2"}},
      {"--fps", {"map"}, {"24", "29.97"}, kNoNumber},
      {"--progress", {"map"}, {"auto", "json", "none"}, kNoName},
      {"--resume", {"map"}, {}, {}},
      {"--keep-damaged", {"map"}, {}, {}},
      {"--dry-run", {"map"}, {}, {}},
      {"--size", {"lut"}, {"17"}, kNoInteger},
      {"--size",
       {"chart"},
       {"32x32", "33x17"},
       {"", "0x0", "10", "1x", "-1x5", "99999999x9999999", "0x10x10", "1e2x5", " 5x5"}},
      {"--frames", {"chart"}, {"3"}, kNoInteger},
      {"--hlg", {"chart"}, {}, {}},
      {"--hue", {"curve"}, {}, {}},
      {"--measure", {"inspect"}, {}, {}},
      {"--view", {"compare"}, {"side-by-side", "split", "delta-e", "clip"}, kNoName},
      {"--split", {"compare"}, {"0.25"}, kNoNumber},
      {"--gamut", {"compare"}, {"bt709", "p3-d65", "bt2020"}, kNoName},
      {"--xyzzy", {"map", "compare", "curve", "lut", "inspect", "chart", "devices"}, {}, {}},
  };
  return options;
}

std::vector<Option> OptionsOf(const std::string& command) {
  std::vector<Option> of;
  for (const Option& option : Options()) {
    const auto& commands = option.commands;
    if (std::find(commands.begin(), commands.end(), command) != commands.end()) {
      of.push_back(option);
    }
  }
  return of;
}

class OptionAttack : public Attack {
 public:
  OptionAttack() {
    MustRun({"chart", "--size", "32x32", made_ / "in.exr"});
    MustRun({"chart", "--size", "32x32", made_ / "in.png"});
    MustRun({"chart", "--video", "--frames", "6", "--size", "64x48", made_ / "in.mp4"});
  }
  std::string Name() const override { return "options"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    const Form& form = dice.Of(forms_);
    std::vector<std::string> words = {form.words.front()};
    const bool hasBad = AddOptions(dice, form.words.front(), words);
    const std::string output = folder / form.output;
    for (std::size_t i = 1; i < form.words.size(); ++i) {
      const std::string& word = form.words[i];
      words.push_back(word == "OUT"             ? output
                      : word.starts_with("in.") ? (made_ / word).string()
                                                : word);
    }
    AttackedCase attacked;
    attacked.what = CommandText(words);
    const RunOutcome run = WatchedRun(words).Wait();
    attacked.exitCode = run.exitCode;
    Judge(run, folder, hasBad, attacked.verdict);
    return attacked;
  }

 private:
  struct Form {
    std::vector<std::string> words;  ///< command, then what is not an option
    std::string output;
  };

  /// Whether one of the values is bad.
  static bool AddOptions(Dice& dice, const std::string& command, std::vector<std::string>& words) {
    const std::vector<Option> options = OptionsOf(command);
    bool hasBad = false;
    for (std::size_t count = dice.Between(1, 4); count > 0; --count) {
      const Option& option = dice.Of(options);
      const bool bad = !option.bad.empty() && dice.OneIn(2);
      words.push_back(option.name);
      if (option.name == "--xyzzy") hasBad = true;
      if (option.good.empty()) continue;
      words.back() += "=" + dice.Of(bad ? option.bad : option.good);
      hasBad = hasBad || bad;
    }
    return hasBad;
  }

  static void Judge(const RunOutcome& run, const fs::path& folder, bool hasBad, Verdict& verdict) {
    verdict.RequireDecentEnd(run);
    verdict.RequireCode(run, {0, 2, 3, 4, 6});
    if (run.exitCode == 6) verdict.RequireBlame(run, {"; choose "});
    if (hasBad) verdict.Require(run.exitCode != 0, "a value that is none is taken");
    if (run.exitCode == 0) return;
    verdict.RequireBlame(run, {"quillon: ", "--help"}, {"basic_string", "std::", "bad_", "stoi"});
    verdict.Require(fs::is_empty(folder), "a failed run left a file");
  }

  ScratchFolder made_;
  std::vector<Form> forms_ = {
      {{"map", "in.exr", "OUT"}, "out.png"},
      {{"map", "in.png", "OUT"}, "out.avif"},
      {{"map", "in.png", "OUT"}, "out.exr"},
      {{"map", "in.mp4", "OUT"}, "out.mkv"},
      {{"map", "in.mp4", "OUT"}, "out.mp4"},
      {{"map", "in.mp4", "OUT"}, "out.%d.png"},
      {{"lut", "OUT"}, "out.cube"},
      {{"curve", "OUT"}, "out.csv"},
      {{"curve", "OUT"}, "out.svg"},
      {{"compare", "in.exr", "in.png"}, ""},
      {{"compare", "in.exr", "in.png", "OUT"}, "out.png"},
      {{"compare", "in.mp4", "in.mp4", "OUT"}, "out.png"},
      {{"inspect", "in.mp4"}, ""},
      {{"inspect", "in.exr"}, ""},
      {{"chart", "--size", "48x32", "OUT"}, "out.exr"},
      {{"chart", "--video", "--size", "64x48", "OUT"}, "out.mp4"},
      {{"devices"}, ""},
  };
};

}  // namespace

std::unique_ptr<Attack> MakeOptionAttack() { return std::make_unique<OptionAttack>(); }
