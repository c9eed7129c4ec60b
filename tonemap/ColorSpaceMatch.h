#pragma once

#include "host/orvmediatypes/ColorSpace.h"

namespace Quillon {

/// Whether float pixels of the colour space are BT.2100 PQ code values, luminance metadata aside.
bool MatchesBT2100PQ(const orvmediatypes::color::ColorSpace& colorSpace);

}  // namespace Quillon
