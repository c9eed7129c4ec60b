#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace Quillon::Cli {

/// How progress is shown.
enum class ProgressStyle {
  Auto,  ///< a line that is written over, where standard error is a terminal
  Json,  ///< one JSON object a line on standard error
  None
};

/// What a long piece of work is doing.
struct ProgressStep {
  std::int64_t frame = 0;  ///< number of the frame in its clip
  std::int64_t done = 0;   ///< frames of this run
  std::optional<double> peakNits;
  std::optional<double> sampledPeakNits;  ///< of some rows of the frame
  std::string doing;                      ///< as "hue 1000 -> 203 nits"
};

/// Shows how far a run over frames has come, a few times a second.
class Progress {
 public:
  /// `work` names the run: "map", "measure". `total`: frames in all; 0: not known.
  Progress(ProgressStyle style, std::string work, std::int64_t total);
  /// Leaves no half-written line behind.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `step` is called only when something is to be shown now.
  void Update(const std::function<ProgressStep()>& step);
  /// The last state.
  void Finish(const ProgressStep& step);

 private:
  using Clock = std::chrono::steady_clock;
  void Show(const ProgressStep& step, bool finished);
  void ShowLine(const ProgressStep& step, double seconds, double rate);
  void ShowJson(const ProgressStep& step, double seconds, double rate, bool finished);

  ProgressStyle style_;
  std::string work_;
  std::int64_t total_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_{};
  bool lineOpen_ = false;
};

}  // namespace Quillon::Cli
