#include "tests/refhost/ironlane/CacheHome.h"

#include <cstdlib>

void SetCacheHome(const std::filesystem::path& folder) {
  _wputenv_s(L"LOCALAPPDATA", folder.c_str());
}
