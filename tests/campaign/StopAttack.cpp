#include <algorithm>
#include <csignal>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/video/ClipFiles.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

constexpr int kFrames = 72;

/// Runs that are stopped by signals, and resumed.
class StopAttack : public Attack {
 public:
  StopAttack() {
    Encoding encoding = GreyEncoding();
    encoding.width = 192;
    encoding.height = 108;
    WriteGreyClip(made_ / "plain.mkv", encoding, kFrames, 300);
    AddSound(made_ / "plain.mkv", made_ / "in.mkv");
    for (const Form& form : forms_) {
      MustRun(WordsOf(form, made_ / ("whole" + form.extension)));
      whole_.push_back(FramesOf(made_ / ("whole" + form.extension)));
    }
  }
  std::string Name() const override { return "stops"; }

  AttackedCase Run(Dice& dice, const fs::path& folder) override {
    const std::size_t kind = dice.Below(forms_.size());
    const Form& form = forms_[kind];
    const auto words = WordsOf(form, folder / ("out" + form.extension));
    const int signal = dice.Of(signals_);
    const std::chrono::milliseconds delay(dice.Below(400));

    AttackedCase attacked;
    attacked.what = CommandText(words) + " gets signal " + std::to_string(signal) + " after " +
                    std::to_string(delay.count()) + " ms";
    WatchedRun run(words);
    if (!run.EndsWithin(delay)) run.Signal(signal);
    const RunOutcome outcome = run.Wait();
    attacked.exitCode = outcome.exitCode;
    JudgeStop(outcome, signal, folder, form, attacked.verdict);
    JudgeResumption(words, folder, kind, attacked.verdict);
    return attacked;
  }

 private:
  struct Form {
    std::string extension;
    std::vector<std::string> options;
  };

  std::vector<std::string> WordsOf(const Form& form, const fs::path& output) const {
    std::vector<std::string> words = {"map"};
    words.insert(words.end(), form.options.begin(), form.options.end());
    words.insert(words.end(), {made_ / "in.mkv", output});
    return words;
  }

  static std::vector<std::string> FramesOf(const fs::path& path) {
    if (path.extension() != ".png") return SamplesOf(DecodeClip(path));
    std::vector<std::string> frames;
    for (int frame = 0; frame < kFrames; ++frame) {
      std::string name = path.string();
      name.replace(name.find("%02d"), 4, (frame < 10 ? "0" : "") + std::to_string(frame));
      frames.push_back(ReadFile(name));
    }
    return frames;
  }

  static void JudgeStop(const RunOutcome& run, int signal, const fs::path& folder, const Form& form,
                        Verdict& verdict) {
    verdict.Require(!run.hung, "it hung");
    const int caught = 128 + signal;
    if (run.exitCode != -signal && run.exitCode != 0) {
      verdict.Require(signal != SIGKILL && run.exitCode == caught,
                      "it ended with " + std::to_string(run.exitCode) + ": " + Shortened(run.err));
    }
    if (form.extension == ".%02d.png") return;
    // A signal may come when the file has its name already; whether it is whole is seen later.
    const bool there = fs::exists(folder / ("out" + form.extension));
    verdict.Require(there || run.exitCode != 0, "there is no file, and code 0");
  }

  void JudgeResumption(std::vector<std::string> words, const fs::path& folder, std::size_t kind,
                       Verdict& verdict) const {
    const fs::path output = folder / ("out" + forms_[kind].extension);
    if (!fs::exists(output)) {
      words.emplace_back("--resume");
      const RunOutcome again = WatchedRun(words).Wait();
      verdict.Require(again.exitCode == 0, "it cannot be resumed: " + Shortened(again.err));
      if (again.exitCode != 0) return;
    }
    try {
      const auto frames = FramesOf(output);
      const bool lossless = forms_[kind].extension != ".mp4";
      verdict.Require(frames.size() == whole_[kind].size(),
                      std::to_string(frames.size()) + " frames are there");
      if (lossless)
        verdict.Require(frames == whole_[kind], "the frames are not those of a whole run");
    } catch (const std::exception& error) {
      verdict.Wrong(std::string("the result cannot be read: ") + error.what());
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      // A killed run cannot remove what it was writing under a name of its own, nor its lock, which
      // binds nobody.
      const bool still = forms_[kind].extension == ".%02d.png" || name.ends_with(".lock");
      verdict.Require(still || name.find("part") == std::string::npos, "left: " + name);
    }
  }

  ScratchFolder made_;
  std::vector<Form> forms_ = {
      {".mkv", {"--codec", "ffv1"}}, {".mp4", {"--preset", "ultrafast"}}, {".%02d.png", {}}};
  std::vector<std::vector<std::string>> whole_;
  std::vector<int> signals_ = {SIGINT, SIGTERM, SIGKILL};
};

}  // namespace

std::unique_ptr<Attack> MakeStopAttack() { return std::make_unique<StopAttack>(); }
