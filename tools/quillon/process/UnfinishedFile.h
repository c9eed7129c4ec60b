#pragma once

#include <atomic>
#include <filesystem>

namespace Quillon::Cli {

/// A file that is to go when the program is ended while the object lives. Any thread.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::filesystem::path& path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

 private:
  int slot_;  ///< below 0: there was none
};

/// Removes all of them. For a signal handler that ends the program.
void RemoveUnfinishedFiles();

}  // namespace Quillon::Cli
