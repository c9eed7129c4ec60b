#include "tools/quillon/clip/FileIdentity.h"

#include <system_error>

namespace Quillon::Cli {

std::string FileIdentity(const std::filesystem::path& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error) return {};
  const auto changed = std::filesystem::last_write_time(path, error);
  return std::to_string(size) + " bytes, " + std::to_string(changed.time_since_epoch().count());
}

}  // namespace Quillon::Cli
