#pragma once

#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

/// Refuses an OpenEXR file whose header claims more than the bytes of the file can hold, or more
/// than the limits allow, before OpenEXR takes memory for it: attributes, windows, tiles, pixels.
/// What else may be wrong with the header is left to OpenEXR. Throws StillError.
void CheckExrClaims(const StillSource& source);

}  // namespace Quillon::Cli
