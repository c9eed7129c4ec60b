#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// A new empty folder, removed with its contents when the object goes.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  /// Names of what lies in the folder, sorted.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path path_;
};
