#pragma once

#include <filesystem>
#include <vector>

#include "tools/quillon/map/MapOptions.h"

/// What `quillon curve` was asked for.
struct CurveOptions {
  std::vector<std::filesystem::path> outputs;
  /// In the order asked for, without repetition.
  std::vector<orvmediatypes::color::ToneMapAlgorithmType> algorithms;
  /// Plot and list saturated colours too.
  bool hue = false;
  /// How `quillon map` would be asked to map the ramp; its algorithm and its files do not count.
  MapOptions map;
};

/// The options of `map` for one of the algorithms.
MapOptions MapOptionsFor(const CurveOptions& options,
                         orvmediatypes::color::ToneMapAlgorithmType algorithm);

/// Refuses what none of the algorithms could follow, as `CheckMapOptions` does, and outputs that
/// cannot be: two under one name, an unknown extension, something that stands there. Throws
/// CommandError or StillError.
void CheckCurveOptions(const CurveOptions& options);
