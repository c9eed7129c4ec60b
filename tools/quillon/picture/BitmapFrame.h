#pragma once

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/plot/DrawScene.h"

namespace Quillon::Cli {

/// The bitmap as a new 8-bit BGRA frame in sRGB. Throws CommandError.
PX::VideoFrameRef FrameOfBitmap(const Bitmap& bitmap);

/// The pixels of a float frame in sRGB, rounded to 8 bits. Throws CommandError.
Bitmap BitmapOfFrame(const PX::VideoFrameRef& frame);

}  // namespace Quillon::Cli
