#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "bench/quality/Light.h"

namespace Quality {

/// A real HDR picture, and an SDR rendition of the same scene that its makers made: not the one
/// right answer, but what one liked.
struct MediaPair {
  std::string name;
  double peakNits = 0.0;  ///< measured, in whole nits
  std::vector<Signal> pixels;
  std::vector<Light> reference;
};

/// The pairs that are known here. Throws std::runtime_error for files that are not there or cannot
/// be read.
std::vector<MediaPair> ReadMediaPairs(const std::filesystem::path& folder);

}  // namespace Quality
