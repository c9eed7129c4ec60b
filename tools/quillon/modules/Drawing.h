#pragma once

#include "tools/quillon/plot/DrawScene.h"

/// The module `drawing`: all that calls cairo.
struct DrawingModule {
  decltype(&DrawSvg) drawSvg;
  decltype(&DrawBitmap) drawBitmap;
};
