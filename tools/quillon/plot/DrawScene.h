#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// The scene as an SVG file, its texts as outlines and again, to be read and searched, in the
/// file's description. Throws std::runtime_error.
std::string DrawSvg(const Scene& scene);

/// An opaque picture in sRGB, four bytes a pixel: blue, green, red, alpha.
struct Bitmap {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bgra;
};

/// The scene as pixels. Throws std::runtime_error.
Bitmap DrawBitmap(const Scene& scene);

}  // namespace Quillon::Cli
