#include "tools/quillon/video/SteadyTimes.h"

#include <cmath>
#include <utility>

namespace Quillon::Cli {

namespace {

constexpr double kTolerance =
    0.25;  // of a frame: times are rounded, and repeated fields shift them
constexpr int kFewestSteady = 3;

}  // namespace

SteadyTimes::SteadyTimes(double framesPerSecond) : rate_(framesPerSecond) {}

std::int64_t SteadyTimes::MissingBefore(double seconds) {
  const std::optional<double> last = std::exchange(last_, seconds);
  if (rate_ <= 0.0 || !last) return 0;
  const double frames = (seconds - *last) * rate_;
  const double whole = std::round(frames);
  if (!(whole >= 1.0 && whole <= 1e6) || std::abs(frames - whole) > kTolerance) {
    rate_ = 0.0;  // it varies
    return 0;
  }
  if (whole == 1.0) ++steady_;
  pending_ += static_cast<std::int64_t>(whole) - 1;
  return steady_ < kFewestSteady ? 0 : std::exchange(pending_, 0);
}

}  // namespace Quillon::Cli
