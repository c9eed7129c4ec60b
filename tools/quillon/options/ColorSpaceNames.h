#pragma once

#include <string_view>

#include "mapper/Colors.h"

namespace Quillon::Cli {

using Mapper::ColorSpaceNames;
using Mapper::DescribeColorSpace;

/// The colour space of a name that `--to` and `--from` take ("srgb", "bt2100-pq", ...), or of one
/// of FFmpeg's names for it ("smpte2084"). Full range. Throws CommandError for other names.
orvmediatypes::color::ColorDescription ColorSpaceOfName(std::string_view name);

/// The colour space of three ITU-T H.273 code points "P/T/M": primaries, transfer, matrix. Full
/// range. Throws CommandError when the text is not three numbers from 0 to 255.
orvmediatypes::color::ColorDescription ColorSpaceOfCicp(std::string_view text);

}  // namespace Quillon::Cli
