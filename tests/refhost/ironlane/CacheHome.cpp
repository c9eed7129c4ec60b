#include "tests/refhost/ironlane/CacheHome.h"

#include <cstdlib>

void SetCacheHome(const std::filesystem::path& folder) {
  ::setenv("XDG_CACHE_HOME", folder.c_str(), 1);
}
