#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "host/orvmediatypes/ColorSpace.h"
#include "tools/quillon/io/Still.h"

namespace Quillon::Cli {

/// The colour chunks of the third edition of PNG (W3C, 11.3.2), as the bytes between chunk name and
/// CRC. Parsing gives nothing when the length is wrong.

using PngCicp = std::array<std::uint8_t, 4>;   ///< primaries, transfer, matrix, full-range flag
using PngMdcv = std::array<std::uint8_t, 24>;  ///< in 0.00002 and 0.0001 nits
using PngClli = std::array<std::uint8_t, 8>;   ///< in 0.0001 nits

std::optional<PngCicp> ParseCicp(std::span<const std::uint8_t> chunk);

/// Puts the mastering display into `description`; false, and nothing done, when the length is
/// wrong.
bool ParseMdcv(std::span<const std::uint8_t> chunk,
               orvmediatypes::color::ColorDescription& description);

std::optional<ContentLight> ParseClli(std::span<const std::uint8_t> chunk);

PngMdcv FormatMdcv(const orvmediatypes::color::ColorDescription& description);
PngClli FormatClli(const ContentLight& light);

}  // namespace Quillon::Cli
