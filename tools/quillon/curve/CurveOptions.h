#pragma once

#include <filesystem>
#include <vector>

#include "tools/quillon/options/MappingOptions.h"

namespace Quillon::Cli {

/// What `quillon curve` was asked for.
struct CurveOptions {
  std::vector<std::filesystem::path> outputs;
  /// In the order asked for, without repetition.
  std::vector<Mapper::Algorithm> algorithms;
  /// Plot and list saturated colours too.
  bool hue = false;
  /// How `quillon map` would be asked to map the ramp; its algorithm does not count.
  MappingOptions mapping;
  bool overwrite = false;
  bool quiet = false;
};

/// The options for one of the algorithms.
MappingOptions MappingFor(const CurveOptions& options, Mapper::Algorithm algorithm);

/// Refuses what none of the algorithms could follow, as `CheckMappingOptions` does, and outputs
/// that cannot be: two under one name, an unknown extension, something that stands there. Throws
/// CommandError or StillError.
void CheckCurveOptions(const CurveOptions& options);

}  // namespace Quillon::Cli
