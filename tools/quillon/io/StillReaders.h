#pragma once

#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

/// One reader a format; each throws StillError.

/// OpenEXR, scanline or tiled: the first part that has R, G, B or Y (with RY and BY or without),
/// of half, float or uint channels, in linear light. The picture is the display window; where the
/// data window does not reach it is black. Without the chromaticities attribute the primaries are
/// BT.709, OpenEXR's default.
Still ReadExr(const StillSource& source);

/// Radiance RGBE in the standard orientation, in linear light. EXPOSURE and COLORCORR are divided
/// out. Without the PRIMARIES line the primaries are BT.709 with D65: what the files in use mean,
/// although Radiance's own default has a white point of x = y = 1/3.
Still ReadRadiance(const StillSource& source);

/// PNG of any kind. The colour space comes from the first of cICP, sRGB and gAMA with cHRM that
/// gives one (W3C PNG, third edition, 4.3); an ICC profile is not interpreted. gAMA and cHRM count
/// only where they equal H.273 code points.
Still ReadPng(const StillSource& source);

/// AVIF: the primary picture, or the first of a sequence; crop, rotation and mirroring are done.
Still ReadAvif(const StillSource& source);

}  // namespace Quillon::Cli
