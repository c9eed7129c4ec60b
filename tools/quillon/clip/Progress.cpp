#include "tools/quillon/clip/Progress.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include <unistd.h>

namespace Quillon::Cli {

namespace {

constexpr std::chrono::milliseconds kInterval{200};

std::string ClockText(double seconds) {
  const auto whole = std::lround(seconds);
  char text[32];
  std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  return text;
}

}  // namespace

Progress::Progress(ProgressStyle style, std::string work, std::int64_t total)
    : style_(style), work_(std::move(work)), total_(total) {
  if (style_ == ProgressStyle::Auto && isatty(STDERR_FILENO) == 0) style_ = ProgressStyle::None;
}

Progress::~Progress() {
  if (lineOpen_) std::fputc('\n', stderr);
}

void Progress::Update(const std::function<ProgressStep()>& step) {
  if (style_ == ProgressStyle::None || Clock::now() - shown_ < kInterval) return;
  shown_ = Clock::now();
  Show(step(), false);
}

void Progress::Finish(const ProgressStep& step) {
  if (style_ != ProgressStyle::None) Show(step, true);
}

void Progress::Show(const ProgressStep& step, bool finished) {
  const double seconds = std::chrono::duration<double>(Clock::now() - begin_).count();
  const double rate = seconds > 0.0 ? static_cast<double>(step.done) / seconds : 0.0;
  if (style_ == ProgressStyle::Json) {
    ShowJson(step, seconds, rate, finished);
  } else {
    ShowLine(step, seconds, rate);
  }
}

void Progress::ShowLine(const ProgressStep& step, double seconds, double rate) {
  std::string line = work_ + " " + std::to_string(step.done);
  if (total_ > 0) line += "/" + std::to_string(total_);
  char text[64];
  std::snprintf(text, sizeof text, " frames, %.1f fps, ", rate);
  line += text;
  if (total_ > 0 && rate > 0.0) {
    line += ClockText(static_cast<double>(std::max<std::int64_t>(0, total_ - step.done)) / rate) +
            " left";
  } else {
    line += ClockText(seconds) + " gone";
  }
  if (step.peakNits) {
    std::snprintf(text, sizeof text, ", peak %.0f nits", *step.peakNits);
    line += text;
  }
  if (step.sampledPeakNits) {
    std::snprintf(text, sizeof text, ", peak about %.0f nits", *step.sampledPeakNits);
    line += text;
  }
  if (!step.doing.empty()) line += ", " + step.doing;
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
  std::fflush(stderr);
  lineOpen_ = true;
}

void Progress::ShowJson(const ProgressStep& step, double seconds, double rate, bool finished) {
  nlohmann::json line = {{"work", work_}, {"frame", step.frame}, {"done", step.done},
                         {"fps", rate},   {"seconds", seconds},  {"finished", finished}};
  if (total_ > 0) line["total"] = total_;
  if (total_ > 0 && rate > 0.0) {
    line["seconds_left"] =
        static_cast<double>(std::max<std::int64_t>(0, total_ - step.done)) / rate;
  }
  if (step.peakNits) line["peak_nits"] = *step.peakNits;
  if (step.sampledPeakNits) line["sampled_peak_nits"] = *step.sampledPeakNits;
  if (!step.doing.empty()) line["doing"] = step.doing;
  using nlohmann::json;
  std::fprintf(stderr, "%s\n", line.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
}

}  // namespace Quillon::Cli
