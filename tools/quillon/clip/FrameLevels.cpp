#include "tools/quillon/clip/FrameLevels.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "mapper/Frames.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

namespace {

constexpr double kCutStops = 0.5;
/// A cut stands out from what the pictures round it change.
constexpr double kCutOverNeighbours = 3.0;

/// Area between the two cumulative distributions.
double StopsBetween(std::span<const double> one, std::span<const double> other) {
  double difference = 0.0;
  double area = 0.0;
  for (std::size_t bin = 0; bin < one.size(); ++bin) {
    difference += one[bin] - other[bin];
    area += std::abs(difference);
  }
  return area / Mapper::LightHistogram::kBinsPerStop;
}

bool IsCut(std::span<const FrameLevels> levels, std::size_t at) {
  const double change = levels[at].change;
  if (change < kCutStops) return false;
  const double before = at > 1 ? levels[at - 1].change : 0.0;
  const double after = at + 1 < levels.size() ? levels[at + 1].change : 0.0;
  return change >= kCutOverNeighbours * std::min(before, after);
}

}  // namespace

FrameLevels LevelMeter::Measure(const PX::VideoFrameRef& frame) {
  const Mapper::LightHistogram histogram = ValueOf(Mapper::CountLight(frame, white_));
  FrameLevels levels;
  levels.peak = histogram.PeakNits();
  levels.average = histogram.AverageNits();
  for (std::size_t i = 0; i < kPercentiles.size(); ++i) {
    levels.percentiles[i] = histogram.PercentileNits(kPercentiles[i]);
  }
  levels.steadyPeak = histogram.PercentileNits(percent_);
  if (IsSceneLinear(frame->GetColorSpace().Description())) {
    levels.logAverage = LogAverageNits(frame, white_);
  }
  std::vector<double> shares = histogram.Shares();
  if (previous_) levels.change = StopsBetween(*previous_, shares);
  previous_ = std::move(shares);
  return levels;
}

std::vector<ClipScene> FindScenes(std::span<const FrameLevels> levels, std::int64_t shortest) {
  std::vector<ClipScene> scenes;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const bool begins = scenes.empty() || (scenes.back().count >= shortest && IsCut(levels, i));
    if (begins) scenes.push_back({static_cast<std::int64_t>(i), 0, 0.0});
    ClipScene& scene = scenes.back();
    ++scene.count;
    scene.peak = std::max(scene.peak, levels[i].steadyPeak);
  }
  if (scenes.size() > 1 && scenes.back().count < shortest) {
    const ClipScene last = scenes.back();
    scenes.pop_back();
    scenes.back().count += last.count;
    scenes.back().peak = std::max(scenes.back().peak, last.peak);
  }
  return scenes;
}

}  // namespace Quillon::Cli
