#include <algorithm>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

/// Files that cannot grow past a size, and standard output that takes nothing.
class FullDiskAttack : public Attack {
 public:
  FullDiskAttack() {
    MustRun({"chart", "--size", "96x64", made_ / "in.exr"});
    MustRun({"chart", "--video", "--frames", "24", "--size", "96x64", made_ / "plain.mkv"});
    AddSound(made_ / "plain.mkv", made_ / "in.mkv");
  }
  std::string Name() const override { return "full-disk"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    return dice.OneIn(4) ? RunWithoutOutput(dice) : RunOnFullDisk(dice, folder);
  }

 private:
  struct Form {
    std::vector<std::string> words;  ///< with IN.x and OUT.x in place of names
    std::size_t size;                ///< about as much is written
  };

  std::vector<std::string> Filled(const std::vector<std::string>& words,
                                  const fs::path& folder) const {
    std::vector<std::string> filled = words;
    for (std::string& word : filled) {
      if (word.starts_with("in.")) word = made_ / word;
      if (word.starts_with("out.")) word = folder / word;
    }
    return filled;
  }

  AttackedCase RunOnFullDisk(Dice& dice, const fs::path& folder) const {
    const Form& form = dice.Of(forms_);
    const auto words = Filled(form.words, folder);
    RunLimits limits;
    limits.fileBytes = dice.OneIn(4) ? dice.Below(64) : dice.Below(form.size * 5 / 4);
    AttackedCase attacked;
    attacked.what =
        CommandText(words) + " where files end at " + std::to_string(limits.fileBytes) + " bytes";
    const RunOutcome run = WatchedRun(words, limits).Wait();
    attacked.exitCode = run.exitCode;
    Verdict& verdict = attacked.verdict;
    verdict.RequireDecentEnd(run);
    // The messages' own scratch files are cut off, too, and that is told by the code alone.
    verdict.RequireCode(run, {0, 5});
    const auto output = std::find_if(words.begin(), words.end(), [&folder](const auto& word) {
      return word.starts_with((folder / "out.").string());
    });
    verdict.Require(fs::exists(*output) == (run.exitCode == 0), run.exitCode == 0
                                                                    ? "there is no file, and code 0"
                                                                    : "a failed run left a file");
    if (run.exitCode == 0) return attacked;
    const RunOutcome again = WatchedRun(words).Wait();
    verdict.Require(again.exitCode == 0, "it blocks the next run: " + Shortened(again.err));
    return attacked;
  }

  AttackedCase RunWithoutOutput(Dice& dice) const {
    const auto words = Filled(dice.Of(prints_), "/nowhere");
    RunLimits limits;
    limits.standardOutput = "/dev/full";
    AttackedCase attacked;
    attacked.what = CommandText(words) + " > /dev/full";
    const RunOutcome run = WatchedRun(words, limits).Wait();
    attacked.exitCode = run.exitCode;
    attacked.verdict.RequireDecentEnd(run);
    attacked.verdict.RequireCode(run, {5});
    return attacked;
  }

  ScratchFolder made_;
  std::vector<Form> forms_ = {
      {{"map", "in.exr", "out.png"}, 12000},
      {{"map", "in.exr", "out.exr"}, 30000},
      {{"map", "in.exr", "out.avif"}, 8000},
      {{"map", "--codec", "ffv1", "in.mkv", "out.mkv"}, 300000},
      {{"map", "in.mkv", "out.mp4"}, 120000},
      {{"map", "--codec", "hevc", "in.mkv", "out.mov"}, 120000},
      {{"map", "--codec", "prores", "in.mkv", "out.mov"}, 600000},
      {{"map", "in.mkv", "out.webm"}, 30000},
      {{"lut", "--size", "17", "out.cube"}, 150000},
      {{"curve", "out.csv"}, 30000},
      {{"curve", "out.svg"}, 60000},
      {{"curve", "out.png"}, 60000},
      {{"inspect", "--plot", "out.svg", "in.mkv"}, 30000},
      {{"inspect", "--json", "out.json", "in.mkv"}, 1500},
      {{"inspect", "--sheet", "out.png", "in.mkv"}, 60000},
      {{"compare", "in.exr", "in.exr", "out.png"}, 20000},
      {{"chart", "--size", "96x64", "out.exr"}, 30000},
      {{"chart", "--video", "--frames", "24", "--size", "96x64", "out.mp4"}, 20000},
      {{"chart", "--video", "--frames", "24", "--size", "96x64", "out.mkv"}, 20000},
  };
  std::vector<std::vector<std::string>> prints_ = {
      {"--version"},
      {"--help"},
      {"map", "--help"},
      {"inspect", "in.mkv"},
      {"inspect", "--json", "-", "in.exr"},
      {"compare", "in.exr", "in.exr"},
      {"compare", "--json", "-", "in.exr", "in.exr"},
      {"map", "--dry-run", "in.mkv", "/tmp/quillon-nowhere.mkv"},
      {"devices"},
  };
};

}  // namespace

std::unique_ptr<Attack> MakeFullDiskAttack() { return std::make_unique<FullDiskAttack>(); }
