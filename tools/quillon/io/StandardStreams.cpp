#include "tools/quillon/io/StandardStreams.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "tools/quillon/io/StillError.h"

namespace Quillon::Cli {

namespace {

/// What went wrong; empty: nothing did. The system's word for it is known of the last bytes alone.
std::string LossOf(std::ostream& stream, std::FILE* file) {
  errno = 0;
  stream.flush();
  std::fflush(file);
  const int error = errno;
  if (stream && std::ferror(file) == 0) return {};
  return error != 0 ? std::strerror(error) : "it cannot be written";
}

std::string Whole(const std::vector<std::filesystem::path>& written) {
  std::string names;
  for (const auto& path : written) names += (names.empty() ? "" : ", ") + path.string();
  return names.empty() ? "" : " (" + names + (written.size() == 1 ? " is" : " are") + " written)";
}

void RequirePrinted(std::ostream& stream, std::FILE* file, const char* name,
                    const std::vector<std::filesystem::path>& written) {
  const std::string loss = LossOf(stream, file);
  if (loss.empty()) return;
  throw StillError(StillErrorKind::CannotWrite, name,
                   "what was printed is lost: " + loss + Whole(written),
                   "print to a file or a program that takes all of it");
}

}  // namespace

void PrepareStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // The lowest number that is free is given out, which is this one.
    if (fcntl(stream, F_GETFD) < 0) (void)open("/dev/null", O_RDONLY | O_CLOEXEC);
  }
  std::signal(SIGPIPE, SIG_IGN);
}

void RequireAllPrinted(const std::vector<std::filesystem::path>& written) {
  RequirePrinted(std::cout, stdout, "standard output", written);
  RequirePrinted(std::cerr, stderr, "standard error", written);
}

}  // namespace Quillon::Cli
