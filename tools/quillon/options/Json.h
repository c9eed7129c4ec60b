#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/orvmediatypes/ColorSpace.h"

namespace Quillon::Cli {

/// The colour space, as name and ITU-T H.273 code points.
nlohmann::ordered_json ColorSpaceJson(const orvmediatypes::color::ColorDescription& description);

/// JSON as it is written: indented, with a line feed at the end. Bytes that are not UTF-8, as in a
/// file's name, become U+FFFD.
std::string FormatJson(const nlohmann::ordered_json& json);

}  // namespace Quillon::Cli
