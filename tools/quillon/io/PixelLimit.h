#pragma once

#include <cstdint>

namespace Quillon::Cli {

/// Most pixels of a picture that is read where nothing else is asked for.
inline constexpr std::int64_t kDefaultMaxPixels = std::int64_t{1} << 28;

}  // namespace Quillon::Cli
