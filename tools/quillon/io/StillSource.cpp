#include "tools/quillon/io/StillSource.h"

#include <fstream>
#include <system_error>

#include "tools/quillon/io/StillError.h"

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMaxSide = 65535;
constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;

[[noreturn]] void FailRead(const fs::path& path, const std::string& wrong,
                           const std::string& remedy) {
  throw StillError(StillErrorKind::CannotRead, path, wrong, remedy);
}

}  // namespace

StillSource LoadStillSource(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    FailRead(path, "there is no such file", "check the name");
  }
  if (status.type() == fs::file_type::directory) {
    FailRead(path, "it is a folder", "name a picture file in it");
  }
  if (error) FailRead(path, error.message(), "check the permissions of the folders above it");
  if (status.type() != fs::file_type::regular) {
    FailRead(path, "it is not a regular file", "save the picture to a file first");
  }

  StillSource source{path, {}};
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) FailRead(path, "it cannot be opened", "check its permissions");
  const std::streamoff size = file.tellg();
  if (size <= 0) FailRead(path, "it is empty", "get a whole copy of the picture");
  source.bytes.resize(static_cast<std::size_t>(size));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(source.bytes.data()), size);
  if (file.gcount() != size) FailRead(path, "reading it failed", "check the disk it lies on");
  return source;
}

void FailDamaged(const StillSource& source, const std::string& wrong) {
  FailRead(source.path, "damaged or incomplete: " + wrong, "get a whole copy of the picture");
}

void FailNotSupported(const StillSource& source, const std::string& wrong,
                      const std::string& remedy) {
  throw StillError(StillErrorKind::NotSupported, source.path, wrong, remedy);
}

void CheckDimensions(const StillSource& source, std::int64_t width, std::int64_t height) {
  const std::string size = std::to_string(width) + "x" + std::to_string(height);
  if (width < 1 || height < 1) FailDamaged(source, "a picture of " + size + " pixels");
  if (width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) {
    FailNotSupported(source, "a picture of " + size + " pixels is too large",
                     "scale it down to at most 65535 pixels a side and 268435456 in all");
  }
}
