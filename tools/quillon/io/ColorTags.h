#pragma once

#include <cstdint>

#include "host/orvmediatypes/ColorSpace.h"

namespace Quillon::Cli {

/// Sets the primaries of a description from coordinates: the H.273 code point whose coordinates all
/// lie within 1e-4 of them, else 2 with the coordinates themselves. False, with primaries 0, for
/// coordinates that describe no colour space.
bool SetPrimaries(orvmediatypes::color::ColorDescription& description,
                  const orvmediatypes::color::Chromaticities& chromaticities);

/// A description of full-range RGB.
orvmediatypes::color::ColorDescription RgbDescription(std::uint8_t primaries,
                                                      std::uint8_t transfer);

}  // namespace Quillon::Cli
