#include "tools/quillon/clip/FrameLevels.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "tools/quillon/picture/LightLevels.h"

namespace Quillon::Cli {

namespace {

/// Bins follow the bits of a float: 64 to an octave, from 2^-12 to 2^14 nits; all that is darker
/// is in the first.
constexpr std::uint32_t kBinShift = 17;
constexpr std::uint32_t kFirstBits = std::uint32_t{127 - 12} << 23;
constexpr std::size_t kBinCount = std::size_t{26} * 64;
constexpr double kBinsPerStop = 64.0;

constexpr double kCutStops = 0.5;
/// A cut stands out from what the pictures round it change.
constexpr double kCutOverNeighbours = 3.0;

std::size_t BinOf(float nits) {
  const auto bits = std::bit_cast<std::uint32_t>(nits);
  if (bits < kFirstBits) return 0;
  return std::min<std::size_t>((bits - kFirstBits) >> kBinShift, kBinCount - 1);
}

/// The light at the upper end of a bin.
double UpperEnd(std::size_t bin) {
  return std::bit_cast<float>(kFirstBits + (static_cast<std::uint32_t>(bin + 1) << kBinShift));
}

double PercentileOf(std::span<const double> shares, double percentile) {
  double sum = 0.0;
  for (std::size_t bin = 0; bin < shares.size(); ++bin) {
    sum += shares[bin];
    if (sum >= percentile) return UpperEnd(bin);
  }
  return UpperEnd(shares.size() - 1);
}

/// Area between the two cumulative distributions.
double StopsBetween(std::span<const double> one, std::span<const double> other) {
  double difference = 0.0;
  double area = 0.0;
  for (std::size_t bin = 0; bin < one.size(); ++bin) {
    difference += one[bin] - other[bin];
    area += std::abs(difference);
  }
  return area / kBinsPerStop;
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
  FrameLevels levels;
  std::vector<std::uint32_t> counts(kBinCount);
  double sum = 0.0;
  float largest = 0.0F;
  const auto white = static_cast<float>(white_);
  const auto pixels = ForEachLight(frame, white_, [&](std::span<const float> row) {
    for (const float light : row) {
      largest = std::max(largest, light * white);
      sum += light * white;
      ++counts[BinOf(light * white)];
    }
  });
  const auto count = static_cast<double>(pixels);
  levels.peak = largest;
  levels.average = sum / count;
  Histogram shares(counts.begin(), counts.end());
  for (double& share : shares) share /= count;
  for (std::size_t i = 0; i < kPercentiles.size(); ++i) {
    levels.percentiles[i] = std::min(PercentileOf(shares, kPercentiles[i]), levels.peak);
  }
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
    scene.peak = std::max(scene.peak, levels[i].SteadyPeak());
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
