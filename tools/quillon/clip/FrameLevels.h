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
  /// How far the light has moved since the picture before: the mean distance between the two
  /// distributions in stops. 0 for the first.
  double change = 0.0;

  /// The peak without the few pixels that lossy coding lifts above it: 99.99 % do not exceed it.
  double SteadyPeak() const { return percentiles.back(); }
  friend bool operator==(const FrameLevels&, const FrameLevels&) = default;
};

inline constexpr std::array<double, 4> kPercentiles = {0.5, 0.9, 0.99, 0.9999};

/// Measures pictures one after another.
class LevelMeter {
 public:
  /// `white` is what 1.0 in linear light stands for in nits.
  explicit LevelMeter(int white) : white_(white) {}

  /// Components that are not finite or lie below 0 count as 0. Throws CommandError when the picture
  /// cannot be linearized.
  FrameLevels Measure(const PX::VideoFrameRef& frame);

 private:
  /// Shares of the pixels by the logarithm of their light.
  using Histogram = std::vector<double>;

  int white_;
  std::optional<Histogram> previous_;
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
