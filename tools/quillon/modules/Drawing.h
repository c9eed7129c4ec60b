#pragma once

#include "tools/quillon/plot/DrawScene.h"

namespace Quillon::Cli {

/// The module `drawing`: all that calls cairo.
struct DrawingModule {
  decltype(&DrawSvg) drawSvg;
  decltype(&DrawBitmap) drawBitmap;
};

}  // namespace Quillon::Cli
