#pragma once

#include <string_view>

namespace RefHost {

/// Reports through the host's trace: level 7, category "Ironlane".
void TraceMessage(std::string_view text);

}  // namespace RefHost
