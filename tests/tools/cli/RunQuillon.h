#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// What a run of the command line left.
struct RunResult {
  int exitCode = -1;  ///< -1: ended by a signal
  std::string out;
  std::string err;
};

/// Runs the built `quillon` with these arguments.
RunResult RunQuillon(const std::vector<std::string>& arguments);

/// A new empty folder, removed with its contents when the object goes.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

  /// Names of what lies in the folder, sorted.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path path_;
};

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);
