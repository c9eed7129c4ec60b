#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mapper/Plan.h"
#include "tools/quillon/clip/ClipPicture.h"
#include "tools/quillon/clip/LevelsFile.h"
#include "tools/quillon/map/MapOptions.h"
#include "tools/quillon/picture/Exposure.h"

namespace Quillon::Cli {

/// Maps the pictures of a clip by one plan. Where the colour tags change in mid-clip the plan is
/// made anew; where the clip has scenes, each is mapped from its own peak. One thread.
class ClipMapper {
 public:
  /// `levels` are the measured levels of the clip, where the options ask for them.
  ClipMapper(const MapOptions& options, const ClipTags& tags, std::optional<ClipLevels> levels);

  /// Of all pictures, where one was asked for.
  const std::optional<Exposure>& ExposureOfClip() const { return exposure_; }
  /// For the first picture.
  const Mapper::Plan& Plan() const { return plan_; }
  /// Empty: the whole clip is mapped alike.
  const std::vector<ClipScene>& Scenes() const { return scenes_; }
  /// What is known of the light of the clip: measured, else as it is tagged.
  ContentLight KnownLight() const;

  /// Throws CommandError.
  void Map(const ClipPicture& picture, PX::VideoFrameRef& destination);
  /// The peak of a picture where the clip was measured before; else nothing.
  std::optional<double> PeakOf(std::int64_t number) const;
  /// The peaks that were mapped from, as "1000 nits" or, with scenes, "200 to 1000 nits".
  std::string PeakText() const;
  /// What is being done to pictures now, as "hue 1000 -> 203 nits".
  std::string Doing() const;

 private:
  double Factor() const { return exposure_ ? exposure_->Factor() : 1.0; }
  void FollowTags(const ClipPicture& picture);
  void FollowScenes(std::int64_t number);

  const MapOptions& options_;
  ClipTags tags_;
  std::optional<ClipLevels> levels_;
  std::optional<Exposure> exposure_;
  std::vector<ClipScene> scenes_;
  Mapper::Plan plan_;
  double peakNits_;  ///< that `plan_` maps from
};

}  // namespace Quillon::Cli
