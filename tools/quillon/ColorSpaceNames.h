#pragma once

#include <string>
#include <string_view>

#include "host/orvmediatypes/ColorSpace.h"

/// The colour space of a name that `--to` and `--from` take ("srgb", "bt2100-pq", ...), or of one
/// of FFmpeg's names for it ("smpte2084"). Full range. Throws CommandError for other names.
orvmediatypes::color::ColorDescription ColorSpaceOfName(std::string_view name);

/// The names, separated by spaces, for help and messages.
std::string ColorSpaceNames();

/// The colour space of three ITU-T H.273 code points "P/T/M": primaries, transfer, matrix. Full
/// range. Throws CommandError when the text is not three numbers from 0 to 255.
orvmediatypes::color::ColorDescription ColorSpaceOfCicp(std::string_view text);

/// How a colour space is called in what the user reads: its name where it has one, and its code
/// points, as "BT.2100 PQ (CICP 9/16/0)".
std::string DescribeColorSpace(const orvmediatypes::color::ColorDescription& description);
