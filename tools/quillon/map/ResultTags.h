#pragma once

#include "tools/quillon/video/ClipTags.h"

namespace Quillon::Cli {

/// The tags of a clip that was mapped to `destination`, whose peak is `peakNits`. PQ with the peak
/// that it now has: the mastering display is the source's, where the primaries stayed, else the
/// destination's primaries, and light levels are given where the source's are known; neither is
/// above the destination's peak. Other results have neither. Chroma stays where it was.
ClipTags ResultTags(const orvmediatypes::color::ColorDescription& destination, double peakNits,
                    const ClipTags& source, const ContentLight& knownLight);

}  // namespace Quillon::Cli
