#include "tools/quillon/io/TargetFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>
#include <system_error>
#include <utility>

#include "tools/quillon/io/StillError.h"

namespace fs = std::filesystem;

namespace {

constexpr int kNameAttempts = 100;

[[noreturn]] void FailWrite(const fs::path& path, const std::string& wrong,
                            const std::string& remedy) {
  throw StillError(StillErrorKind::CannotWrite, path, wrong, remedy);
}

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// A new file of a name of its own; removed again unless it is renamed.
// NOLINTBEGIN(cppcoreguidelines-owning-memory): this class is the owner of its C stream
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& target) {
    std::random_device random;
    for (int attempt = 0; attempt < kNameAttempts && file_ == nullptr; ++attempt) {
      path_ = FolderOf(target) /
              ("." + target.filename().string() + "." + std::to_string(random()) + ".part");
      errno = 0;
      file_ = std::fopen(path_.string().c_str(), "wbx");
      if (file_ == nullptr && errno != EEXIST) break;
    }
    if (file_ == nullptr) {
      FailWrite(target, std::string("no file can be made beside it: ") + std::strerror(errno),
                "check the permissions of its folder");
    }
  }

  ~TemporaryFile() {
    Close();
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// 0 when all bytes have reached the file, else the system's error number.
  int Write(std::span<const std::uint8_t> bytes) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) return errno;
    return Close() ? 0 : errno;
  }

  void RenameTo(const fs::path& target) {
    fs::rename(path_, target);
    path_.clear();
  }

 private:
  bool Close() {
    std::FILE* file = std::exchange(file_, nullptr);
    return file == nullptr || std::fclose(file) == 0;
  }

  fs::path path_;
  std::FILE* file_ = nullptr;
};
// NOLINTEND(cppcoreguidelines-owning-memory)

}  // namespace

std::string LowerCaseExtension(const fs::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

void CheckTargetFile(const fs::path& path, bool overwrite) {
  std::error_code error;
  if (!fs::is_directory(FolderOf(path), error)) {
    FailWrite(path, "its folder " + FolderOf(path).string() + " does not exist",
              "make the folder first");
  }
  const fs::file_status status = fs::status(path, error);
  switch (status.type()) {
    case fs::file_type::not_found:
      return;
    case fs::file_type::regular:
      if (overwrite) return;
      FailWrite(path, "it exists already", "choose another name or give --overwrite");
    case fs::file_type::directory:
      FailWrite(path, "it is a folder", "name a file in it");
    default:
      FailWrite(path, "it is no regular file", "name a file on a disk");
  }
}

void WriteTargetFile(const fs::path& path, std::span<const std::uint8_t> bytes, bool overwrite) {
  TemporaryFile file(path);
  if (const int error = file.Write(bytes); error != 0) {
    FailWrite(path, std::string("writing failed: ") + std::strerror(error),
              "make room on the disk or choose another folder");
  }
  CheckTargetFile(path, overwrite);
  try {
    file.RenameTo(path);
  } catch (const fs::filesystem_error& error) {
    FailWrite(path, "the finished file cannot be given its name: " + error.code().message(),
              "check the permissions of its folder");
  }
}
