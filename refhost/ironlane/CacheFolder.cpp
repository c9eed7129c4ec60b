#include "refhost/ironlane/CacheFolder.h"

#include <cstdlib>
#include <utility>

namespace RefHost {

std::filesystem::path UserCacheFolder() {
  for (const auto& [variable, below] :
       {std::pair{"XDG_CACHE_HOME", ""}, std::pair{"HOME", ".cache"}}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value == '/') return std::filesystem::path(value) / below;
  }
  return {};
}

}  // namespace RefHost
