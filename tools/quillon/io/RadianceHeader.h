#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/orvmediatypes/ColorSpace.h"
#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

/// The text at the head of a Radiance picture.
struct RadianceHeader {
  int width = 0;
  int height = 0;
  /// Products of all EXPOSURE and COLORCORR lines for red, green and blue: what pixels are to be
  /// divided by.
  std::array<double, 3> scale{1.0, 1.0, 1.0};
  std::optional<orvmediatypes::color::Chromaticities> primaries;
  std::vector<std::string> remarks;
  /// Offset of the first byte of the pixels.
  std::size_t pixelOffset = 0;
};

/// Throws StillError.
RadianceHeader ParseRadianceHeader(const StillSource& source);

}  // namespace Quillon::Cli
