#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/orvmediatypes/ColorSpace.h"

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// Colours by the code points of ITU-T H.273 (which ISO/IEC 23091-2 calls CICP), with what a
/// mastering display (SMPTE ST 2086) adds. The numbers of H.273 tables 2, 3 and 4 go into
/// `primaries`, `transfer` and `matrix` as they are; 0 and 2 say nothing.
using ColorDescription = orvmediatypes::color::ColorDescription;

/// The colour space of a name, full range: "srgb", "bt709", "p3-d65", "bt2020", "bt2100-pq",
/// "bt2100-hlg", or FFmpeg's name for its transfer ("smpte2084"); of linear light "linear-bt709",
/// "linear-p3", "linear-bt2020", "acescg", "aces2065-1". Nothing for other names.
std::optional<ColorDescription> ColorSpaceOfName(std::string_view name);

/// The names, separated by spaces, without FFmpeg's.
std::string ColorSpaceNames();

/// The colour space of three code points "P/T/M", such as "9/16/9", full range. Nothing where the
/// text is not three numbers from 0 to 255.
std::optional<ColorDescription> ColorSpaceOfCicp(std::string_view text);

/// How a colour space is called in what people read: its title where it has one, and its code
/// points, as "BT.2100 PQ (CICP 9/16/0)".
std::string DescribeColorSpace(const ColorDescription& description);

/// Whether a code point says anything.
constexpr bool Tells(unsigned codePoint) { return codePoint != 0 && codePoint != 2; }

/// Whether transfer and primaries are told, the latter by a code point or by coordinates.
bool TellsColors(const ColorDescription& description);

/// Whether light in these colours can be had from its signal: transfer and primaries are known
/// here.
bool IsConvertible(const ColorDescription& description);

}  // namespace Mapper
}  // namespace Quillon
