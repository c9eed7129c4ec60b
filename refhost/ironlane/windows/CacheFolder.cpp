#include "refhost/ironlane/CacheFolder.h"

#include <cstdlib>

namespace RefHost {

std::filesystem::path UserCacheFolder() {
  // Wide: a user's name is in any script.
  const wchar_t* value = _wgetenv(L"LOCALAPPDATA");
  if (value == nullptr) return {};
  std::filesystem::path folder(value);
  return folder.is_absolute() ? folder : std::filesystem::path();
}

}  // namespace RefHost
