#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Quillon::Cli {

/// "1 frame", "2 frames".
inline std::string Counted(std::int64_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

/// "A, B or C", with `last` being " or ". At least one word.
inline std::string JoinWords(const std::vector<std::string_view>& words, std::string_view last) {
  std::string list(words.front());
  for (std::size_t i = 1; i < words.size(); ++i) {
    list.append(i + 1 < words.size() ? std::string_view(", ") : last).append(words[i]);
  }
  return list;
}

}  // namespace Quillon::Cli
