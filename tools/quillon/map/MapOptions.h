#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "tools/quillon/io/Still.h"
#include "tools/quillon/map/ClipOptions.h"
#include "tools/quillon/options/MappingOptions.h"

namespace Quillon::Cli {

/// What `quillon map` was asked for, each value checked on its own.
struct MapOptions {
  std::filesystem::path input;
  std::filesystem::path output;
  MappingOptions mapping;
  std::optional<int> depth;
  std::optional<int> threads;
  std::int64_t maxPixels = kDefaultMaxPixels;  ///< of a picture that is read
  bool explain = false;
  bool overwrite = false;
  bool quiet = false;
  ClipOptions clip;
};

/// Refuses combinations in which an option would have no effect or no meaning. Throws CommandError.
void CheckMapOptions(const MapOptions& options);

/// The same for what clips and sequences have besides.
void CheckClipOptions(const MapOptions& options);

/// The same for a still, which options for clips have no effect on.
void CheckStillOptions(const MapOptions& options);

}  // namespace Quillon::Cli
