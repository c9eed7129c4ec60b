#include "tools/quillon/io/StillSource.h"

#include <fstream>
#include <system_error>

#include "tools/quillon/io/StillError.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMaxSide = 65535;

[[noreturn]] void FailRead(const fs::path& path, const std::string& wrong,
                           const std::string& remedy) {
  throw StillError(StillErrorKind::CannotRead, path, wrong, remedy);
}

[[noreturn]] void FailReading(const fs::path& path) {
  FailRead(path, "reading it failed", "check its permissions and the disk it lies on");
}

/// A regular file, open for reading.
std::ifstream Open(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    const bool dangles = fs::is_symlink(fs::symlink_status(path, error));
    FailRead(path, dangles ? "it is a link to a file that is not there" : "there is no such file",
             "check the name");
  }
  if (status.type() == fs::file_type::directory) {
    FailRead(path, "it is a folder", "name a file in it");
  }
  if (error) FailRead(path, error.message(), "check the permissions of the folders above it");
  if (status.type() != fs::file_type::regular) {
    FailRead(path, "it is not a regular file", "save the picture to a file first");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) FailRead(path, "it cannot be opened", "check its permissions");
  return file;
}

}  // namespace

std::vector<std::uint8_t> LoadHead(const fs::path& path, std::size_t count) {
  std::ifstream file = Open(path);
  std::vector<std::uint8_t> head(count);
  file.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(count));
  if (file.bad()) FailReading(path);
  head.resize(static_cast<std::size_t>(file.gcount()));
  if (head.empty()) FailRead(path, "it is empty", "get a whole copy of it");
  return head;
}

StillSource LoadStillSource(const fs::path& path) {
  std::ifstream file = Open(path);
  StillSource source{path, {}};
  file.seekg(0, std::ios::end);
  const std::streamoff size = file.tellg();
  if (size <= 0) FailRead(path, "it is empty", "get a whole copy of it");
  source.bytes.resize(static_cast<std::size_t>(size));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(source.bytes.data()), size);
  if (file.gcount() != size) FailReading(path);
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
  if (width > kMaxSide || height > kMaxSide) {
    FailNotSupported(source, "a picture of " + size + " pixels is too large",
                     "scale it down to at most " + std::to_string(kMaxSide) + " pixels a side");
  }
  if (width * height > source.maxPixels) {
    FailNotSupported(source,
                     "a picture of " + size + " pixels is beyond the limit of " +
                         std::to_string(source.maxPixels),
                     "scale it down or raise --max-pixels");
  }
}

void CheckHeld(const StillSource& source, const std::string& what, double needed, double held) {
  if (needed <= held) return;
  FailDamaged(source,
              what + " cannot be in a file of " + std::to_string(source.bytes.size()) + " bytes");
}

}  // namespace Quillon::Cli
