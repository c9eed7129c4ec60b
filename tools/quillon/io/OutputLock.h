#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "tools/quillon/process/UnfinishedFile.h"

namespace Quillon::Cli {

/// Keeps other runs of this program from an output while it lives, or from some pictures of it. The
/// lock goes with the process, however that ends; what a killed run leaves of the lock's file binds
/// nobody. File systems without locks are written to without.
class OutputLock {
 public:
  /// Pictures `first` to `last`, or all from `first` on where `last` is below 0. `file` lies beside
  /// `output` and is removed when no run needs it any more. Throws StillError (CannotWrite), which
  /// names the process, where another run has them, or where the file cannot be made.
  OutputLock(const std::filesystem::path& output, const std::filesystem::path& file,
             std::int64_t first = 0, std::int64_t last = -1);
  ~OutputLock();
  OutputLock(const OutputLock&) = delete;
  OutputLock& operator=(const OutputLock&) = delete;

 private:
  /// False where another run has it.
  bool Take(const std::filesystem::path& output, std::int64_t first, std::int64_t last);

  std::filesystem::path file_;
  std::optional<UnfinishedFile> unfinished_;
  int descriptor_ = -1;
  std::string holder_;  ///< the other run, for messages
};

}  // namespace Quillon::Cli
