#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tools/quillon/clip/FrameLevels.h"

namespace Quillon::Cli {

/// Light levels of a whole clip, as the file beside it keeps them. Their meaning depends on the
/// colour space and white that they were measured with, the steady peaks on the percentile too.
struct ClipLevels {
  std::string colorSpace;
  int white = 0;
  double percent = 0.0;
  std::vector<FrameLevels> frames;

  /// The largest steady peak of a picture: what the clip is mapped from.
  double SteadyPeak() const;
  /// The largest light of a pixel.
  double MaxCll() const;
  /// Log-average luminance of all pictures that have light; 0 where none has.
  double LogAverage() const;
  /// The largest average of a picture.
  double MaxFall() const;
};

/// The name under which the levels of a clip are kept: beside it, "clip.mp4.levels.json".
std::filesystem::path LevelsFileOf(const std::filesystem::path& clip);

/// What is kept of a clip. Nothing where there is none, or where it was measured on another version
/// of the file (by size and time of change), in another colour space, with another white or
/// percentile.
std::optional<ClipLevels> LoadLevels(const std::filesystem::path& clip,
                                     const std::string& colorSpace, int white, double percent);

/// Keeps the levels. Throws StillError when the file cannot be written.
void SaveLevels(const std::filesystem::path& clip, const ClipLevels& levels);

}  // namespace Quillon::Cli
