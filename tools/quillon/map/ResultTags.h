#pragma once

#include "tools/quillon/MapPlan.h"
#include "tools/quillon/video/ClipTags.h"

/// The tags of a mapped clip. PQ with the peak that it now has: the mastering display is the
/// source's, where the primaries stayed, else the destination's primaries, and light levels are
/// given where the source's are known; neither is above the destination's peak. Other results have
/// neither. Chroma stays where it was.
ClipTags ResultTags(const MapPlan& plan, const MapOptions& options, const ClipTags& source,
                    const ContentLight& knownLight);
