#pragma once

#include <filesystem>
#include <functional>
#include <ostream>

#include "mapper/Picture.h"
#include "tools/quillon/clip/LevelsFile.h"
#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/clip/Progress.h"

namespace Quillon::Cli {

/// How a clip is to be measured.
struct MeasureRequest {
  std::filesystem::path clip;
  AVRational sequenceRate{24, 1};
  int white = 203;
  double percent = Mapper::kSteadyPercent;     ///< of the steady peaks
  std::int64_t maxPixels = kDefaultMaxPixels;  ///< of a picture
  ProgressStyle progress = ProgressStyle::Auto;
  DamagePolicy policy = DamagePolicy::Stop;
  /// The colour space of a picture, from its tags. Throws where they do not tell.
  std::function<orvmediatypes::color::ColorDescription(const ClipTags& tags)> colorsOf;
};

/// The light levels of all frames of a clip: what is kept beside the clip, else measured in a pass
/// of its own, and kept where nothing is damaged. `notes` is told where they cannot be kept. Throws
/// CommandError, also on Ctrl-C, and at a damaged place where the policy is to stop.
ClipLevels LevelsOfClip(const MeasureRequest& request, std::ostream& notes);

}  // namespace Quillon::Cli
