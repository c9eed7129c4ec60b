#include "tools/quillon/io/OutputLock.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/quillon/io/StillError.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kToTheEnd = -1;

struct flock RangeOf(short type, std::int64_t first, std::int64_t last) {
  struct flock range {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = first;
  range.l_len = last < 0 ? 0 : last - first + 1;
  return range;
}

/// What another user's run left can often be read alone, which is enough to find it in use.
short StrongestLock(int file) {
  return (fcntl(file, F_GETFL) & O_ACCMODE) == O_RDONLY ? F_RDLCK : F_WRLCK;
}

/// 0, or the system's error number.
int Lock(int file, std::int64_t first, std::int64_t last) {
  struct flock range = RangeOf(StrongestLock(file), first, last);
  return fcntl(file, F_OFD_SETLK, &range) == 0 ? 0 : errno;
}

int OpenLockFile(const fs::path& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (file >= 0 || errno != EACCES) return file;
  return open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

/// Whether the open file still has its name: who removed it meanwhile took the lock with it.
bool IsStillThere(int file, const fs::path& path) {
  struct stat open {};
  struct stat named {};
  return fstat(file, &open) == 0 && stat(path.c_str(), &named) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

/// The process that has a lock in the way, as it wrote it there: a line of its number and `first`.
std::string HolderOf(int file, const fs::path& path, std::int64_t first, std::int64_t last) {
  struct flock range = RangeOf(StrongestLock(file), first, last);
  if (fcntl(file, F_OFD_GETLK, &range) != 0 || range.l_type == F_UNLCK) return {};
  std::ifstream lines(path);
  std::string holder;
  std::int64_t process = 0;
  std::int64_t start = 0;
  while (lines >> process >> start) {
    if (start == range.l_start) holder = " (process " + std::to_string(process) + ")";
  }
  return holder;
}

}  // namespace

OutputLock::OutputLock(const fs::path& output, const fs::path& file, std::int64_t first,
                       std::int64_t last)
    : file_(file) {
  // Another run may have it for a moment alone, while it takes its file away.
  constexpr int kAttempts = 50;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (Take(output, first, last)) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  throw StillError(StillErrorKind::CannotWrite, output, "another run" + holder_ + " is writing it",
                   "wait until that has ended, or choose another name");
}

bool OutputLock::Take(const fs::path& output, std::int64_t first, std::int64_t last) {
  const int file = OpenLockFile(file_);
  if (file < 0) {
    throw StillError(StillErrorKind::CannotWrite, output,
                     std::string("no file can be made beside it: ") + std::strerror(errno),
                     "check the permissions of its folder");
  }
  const int error = Lock(file, first, last);
  const bool isHeld = error == EAGAIN || error == EACCES;
  if (error == 0 && IsStillThere(file, file_)) {
    descriptor_ = file;
    if (first == 0 && last == kToTheEnd) unfinished_.emplace(file_);
    dprintf(file, "%d %lld\n", static_cast<int>(getpid()), static_cast<long long>(first));
    return true;
  }
  if (isHeld) holder_ = HolderOf(file, file_, first, last);
  close(file);
  if (error == 0 || isHeld) return false;
  std::error_code ignored;
  fs::remove(file_, ignored);  // there are no locks here
  return true;
}

OutputLock::~OutputLock() {
  if (descriptor_ < 0) return;
  if (Lock(descriptor_, 0, kToTheEnd) == 0 && IsStillThere(descriptor_, file_)) {
    std::error_code ignored;
    fs::remove(file_, ignored);
  }
  close(descriptor_);
}

}  // namespace Quillon::Cli
