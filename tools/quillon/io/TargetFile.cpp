#include "tools/quillon/io/TargetFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <random>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "tools/quillon/io/NameBeside.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/process/UnfinishedFile.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

constexpr int kNameAttempts = 100;

[[noreturn]] void FailWrite(const fs::path& path, const std::string& wrong,
                            const std::string& remedy) {
  throw StillError(StillErrorKind::CannotWrite, path, wrong, remedy);
}

/// A new file of a name of its own; removed again unless it is renamed.
// NOLINTBEGIN(cppcoreguidelines-owning-memory): this class is the owner of its C stream
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& target) {
    std::random_device random;
    for (int attempt = 0; attempt < kNameAttempts && file_ == nullptr; ++attempt) {
      path_ = NameBeside(target, "." + target.filename().string(),
                         "." + std::to_string(random()) + ".part");
      unfinished_.emplace(path_);
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

  std::error_code Become(const fs::path& target, bool overwrite) {
    const std::error_code error = GiveName(path_, target, overwrite);
    if (!error) path_.clear();
    return error;
  }

 private:
  bool Close() {
    std::FILE* file = std::exchange(file_, nullptr);
    return file == nullptr || std::fclose(file) == 0;
  }

  fs::path path_;
  std::optional<UnfinishedFile> unfinished_;
  std::FILE* file_ = nullptr;
};
// NOLINTEND(cppcoreguidelines-owning-memory)

[[noreturn]] void FailAsExisting(const fs::path& path) {
  FailWrite(path, "it exists already", "choose another name or give --overwrite");
}

std::error_code ErrorOf(int result) {
  return result == 0 ? std::error_code() : std::error_code(errno, std::generic_category());
}

bool IsMissing(const std::error_code& error) {
  return error == std::errc::invalid_argument || error == std::errc::function_not_supported ||
         error == std::errc::operation_not_supported ||
         error == std::errc::operation_not_permitted || error == std::errc::too_many_links;
}

/// By what the file system offers: not all can rename without replacing, nor make hard links.
std::error_code RenameToFreeName(const fs::path& from, const fs::path& to) {
  std::error_code error =
      ErrorOf(renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
  if (!IsMissing(error)) return error;
  error = ErrorOf(link(from.c_str(), to.c_str()));
  if (!error) return ErrorOf(unlink(from.c_str()));
  if (!IsMissing(error)) return error;
  if (fs::symlink_status(to, error).type() != fs::file_type::not_found) {
    return std::make_error_code(std::errc::file_exists);
  }
  return ErrorOf(std::rename(from.c_str(), to.c_str()));
}

}  // namespace

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

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
      if (overwrite || !fs::is_symlink(fs::symlink_status(path, error))) return;
      FailAsExisting(path);
    case fs::file_type::regular:
      if (overwrite) return;
      FailAsExisting(path);
    case fs::file_type::none:
      FailWrite(path, error.message(), "choose another name");
    case fs::file_type::directory:
      FailWrite(path, "it is a folder", "name a file in it");
    default:
      FailWrite(path, "it is no regular file", "name a file on a disk");
  }
}

std::error_code GiveName(const fs::path& finished, const fs::path& name, bool overwrite) {
  return overwrite ? ErrorOf(std::rename(finished.c_str(), name.c_str()))
                   : RenameToFreeName(finished, name);
}

void WriteTargetFile(const fs::path& path, std::span<const std::uint8_t> bytes, bool overwrite) {
  TemporaryFile file(path);
  if (const int error = file.Write(bytes); error != 0) {
    FailWrite(path, std::string("writing failed: ") + std::strerror(error),
              "make room on the disk or choose another folder");
  }
  CheckTargetFile(path, overwrite);
  const std::error_code error = file.Become(path, overwrite);
  if (error == std::errc::file_exists) FailAsExisting(path);
  if (error) {
    FailWrite(path, "the finished file cannot be given its name: " + error.message(),
              "check the permissions of its folder");
  }
}

}  // namespace Quillon::Cli
