#include <algorithm>
#include <array>
#include <map>
#include <thread>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

constexpr int kFrames = 60;

/// Two runs at one output, from two sources that cannot be taken for each other.
class RivalAttack : public Attack {
 public:
  RivalAttack() {
    for (const int source : {0, 1}) {
      Encoding encoding = GreyEncoding();
      encoding.width = 192;
      encoding.height = 108;
      WriteGreyClip(Source(source), encoding, kFrames, 300 + 200 * source);
      for (const char* extension : {".mkv", ".mp4"}) {
        MustRun(MapWords(Source(source), Alone(source, extension), extension));
        alone_[source][extension] = SamplesOf(DecodeClip(Alone(source, extension)));
      }
      MustRun({"map", Source(source), made_ / ("alone" + std::to_string(source) + ".%02d.png")});
      MustRun({"chart", "--size", source == 0 ? "64x48" : "48x64", Still(source)});
      MustRun({"map", Still(source), made_ / ("still" + std::to_string(source) + ".png")});
    }
  }
  std::string Name() const override { return "rivals"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    const std::string extension = dice.Of(extensions_);
    const fs::path output = folder / ("out" + extension);
    const bool overwrite = dice.OneIn(2);
    std::vector<std::vector<std::string>> words;
    for (const int source : {0, 1}) {
      const bool still = extension == ".png";
      words.push_back(MapWords(still ? Still(source) : Source(source), output, extension));
      if (overwrite) words.back().emplace_back("--overwrite");
    }
    const std::chrono::milliseconds delay(dice.OneIn(3) ? 0 : dice.Below(200));

    AttackedCase attacked;
    attacked.what = CommandText(words[0]) + " and after " + std::to_string(delay.count()) + " ms " +
                    CommandText(words[1]);
    WatchedRun first(words[0]);
    std::this_thread::sleep_for(delay);
    WatchedRun second(words[1]);
    const std::vector<RunOutcome> runs = {first.Wait(), second.Wait()};
    attacked.exitCode = std::max(runs[0].exitCode, runs[1].exitCode);
    Judge(runs, folder, extension, attacked.verdict);
    return attacked;
  }

 private:
  fs::path Source(int number) const { return made_ / ("in" + std::to_string(number) + ".mkv"); }
  fs::path Still(int number) const { return made_ / ("in" + std::to_string(number) + ".exr"); }
  fs::path Alone(int number, const std::string& extension) const {
    return made_ / ("alone" + std::to_string(number) + extension);
  }

  static std::vector<std::string> MapWords(const fs::path& input, const fs::path& output,
                                           const std::string& extension) {
    std::vector<std::string> words = {"map", input, output};
    if (extension == ".mkv") words.insert(words.begin() + 1, {"--codec", "ffv1"});
    if (extension == ".mp4") words.insert(words.begin() + 1, {"--preset", "ultrafast"});
    return words;
  }

  void Judge(const std::vector<RunOutcome>& runs, const fs::path& folder,
             const std::string& extension, Verdict& verdict) const {
    bool anyWhole = false;
    for (const RunOutcome& run : runs) {
      verdict.RequireDecentEnd(run);
      verdict.RequireCode(run, {0, 5});
      verdict.RequireBlame(run, {"it exists already", "exist already", "process"},
                           {"make room", "move the file away"});
      anyWhole = anyWhole || run.exitCode == 0;
    }
    verdict.Require(anyWhole, "neither came through");
    if (!anyWhole) return;
    const int shown = ShownIn(folder, extension);
    verdict.Require(shown >= 0, "the result is neither's, or not whole");
    if (shown >= 0)
      verdict.Require(runs[static_cast<std::size_t>(shown)].exitCode == 0,
                      "the result is of a run that failed");
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      verdict.Require(name.find("part") == std::string::npos, "left: " + name);
    }
  }

  /// Whose result lies in the folder; -1: neither's as a whole.
  int ShownIn(const fs::path& folder, const std::string& extension) const {
    for (const int source : {0, 1}) {
      if (Shows(folder, extension, source)) return source;
    }
    return -1;
  }

  bool Shows(const fs::path& folder, const std::string& extension, int source) const {
    const std::string number = std::to_string(source);
    if (extension == ".png") {
      return ReadFile(folder / "out.png") == ReadFile(made_ / ("still" + number + ".png"));
    }
    if (extension != ".%02d.png") {
      try {
        return SamplesOf(DecodeClip(folder / ("out" + extension))) == alone_[source].at(extension);
      } catch (const std::exception&) {
        return false;
      }
    }
    for (int frame = 0; frame < kFrames; ++frame) {
      const std::string digits = (frame < 10 ? ".0" : ".") + std::to_string(frame) + ".png";
      if (ReadFile(folder / ("out" + digits)) != ReadFile(made_ / ("alone" + number + digits))) {
        return false;
      }
    }
    return true;
  }

  ScratchFolder made_;
  std::array<std::map<std::string, std::vector<std::string>>, 2> alone_;
  std::vector<std::string> extensions_ = {".mkv", ".mkv", ".mp4", ".%02d.png", ".png"};
};

}  // namespace

std::unique_ptr<Attack> MakeRivalAttack() { return std::make_unique<RivalAttack>(); }
