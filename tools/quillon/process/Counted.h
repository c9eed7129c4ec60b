#pragma once

#include <cstdint>
#include <string>

/// "1 frame", "2 frames".
inline std::string Counted(std::int64_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}
