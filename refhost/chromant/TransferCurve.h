#pragma once

#include <cstdint>
#include <optional>

#include "host/orvmediatypes/ColorSpace.h"
#include "refhost/chromant/TransferParams.h"

namespace RefHost {

/// What takes a colour space's signals to linear light and back; 1.0 is graphics white, whose
/// luminance is `whiteNits`. Nothing for transfers or primaries that are not known here.
///
/// By H.273 transfer characteristic: 1, 6, 11, 14 and 15 are shown by BT.1886 with a black of 0
/// (power 2.4); 4 and 5 by powers of 2.2 and 2.8; 7, 8, 13 and 17 by their own curves. Of all
/// these signal 1.0 is graphics white, but for 17 (see `DecodeSt428`). 16 (PQ) and 18 (HLG) are in
/// nits, divided by graphics white.
std::optional<TransferParams> TransferParamsOf(const orvmediatypes::color::ColorSpace& colorSpace,
                                               double whiteNits);

/// Whether equal signals mean equal light.
bool IsSameTransfer(const TransferParams& one, const TransferParams& other);

/// The code point that stands for all that are shown alike; 0 for transfers not known here.
std::uint8_t CanonicalTransfer(std::uint8_t transfer);

}  // namespace RefHost
