#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tools/quillon/clip/FrameSelection.h"
#include "tools/quillon/clip/Progress.h"
#include "tools/quillon/video/Encoding.h"

namespace Quillon::Cli {

/// What `quillon map` was asked for that concerns clips and image sequences alone.
struct ClipOptions {
  EncodingWishes encoding;
  std::optional<double> sequenceRate;  ///< frames a second of an image sequence
  std::optional<std::vector<FrameRange>> frames;
  std::optional<Chunk> chunk;
  std::optional<ProgressStyle> progress;
  bool resume = false;
  bool dryRun = false;
  bool keepDamaged = false;

  /// The first of these options that was given; empty: none.
  std::string FirstGiven() const;
};

/// Whether a name has the extension of a clip that is written.
bool NamesClip(const std::filesystem::path& path);

}  // namespace Quillon::Cli
