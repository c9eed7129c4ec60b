#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/pavix/IVideoFrame.h"

namespace Quillon::Cli {

/// Light levels of one picture in nits, on the largest of R, G and B (CTA-861.3).
struct FrameLevels {
  double peak = 0.0;
  double average = 0.0;
  /// What 50, 90, 99 and 99.99 % of the pixels do not exceed, to 1.6 %.
  std::array<double, 4> percentiles{};
  /// What the percentile that was asked for does not exceed: the peak without the few pixels that
  /// are too bright, from which the picture is mapped.
  double steadyPeak = 0.0;
  /// Log-average luminance of a scene-linear picture (`LogAverageNits`); 0 for others.
  double logAverage = 0.0;
  /// How far the light has moved since the picture before: the mean distance between the two
  /// distributions in stops. 0 for the first.
  double change = 0.0;

  friend bool operator==(const FrameLevels&, const FrameLevels&) = default;
};

inline constexpr std::array<double, 4> kPercentiles = {50.0, 90.0, 99.0, 99.99};

/// Measures pictures one after another.
class LevelMeter {
 public:
  /// `white` is what 1.0 in linear light stands for in nits; `percent` % of the pixels do not
  /// exceed the steady peak.
  LevelMeter(int white, double percent) : white_(white), percent_(percent) {}

  /// Light is as `Mapper::MeasureLight` takes it. Throws CommandError when the picture
  /// cannot be linearized.
  FrameLevels Measure(const PX::VideoFrameRef& frame);

 private:
  int white_;
  double percent_;
  std::optional<std::vector<double>> previous_;  ///< shares of the bins
};

/// Scenes shorter than this many pictures are not told apart.
inline constexpr std::int64_t kShortestScene = 12;

/// Runs of pictures that are mapped alike.
struct ClipScene {
  std::int64_t first = 0;
  std::int64_t count = 0;
  double peak = 0.0;  ///< the largest steady peak of its pictures, in nits
};

/// Cuts a clip where its light changes at once. Within a scene the peak stays the same, so that the
/// mapping cannot pump; no scene is shorter than `shortest` pictures, unless the clip is.
std::vector<ClipScene> FindScenes(std::span<const FrameLevels> levels, std::int64_t shortest);

}  // namespace Quillon::Cli
