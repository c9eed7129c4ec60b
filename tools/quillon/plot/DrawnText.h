#pragma once

#include <string>
#include <string_view>

namespace Quillon::Cli {

/// A text that can be drawn and stand in XML: what is not UTF-8, as file names may be, and control
/// characters become U+FFFD.
std::string DrawnText(std::string_view text);

}  // namespace Quillon::Cli
