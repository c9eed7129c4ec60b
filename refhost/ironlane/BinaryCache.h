#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace RefHost {

/// Compiled modules, kept on disk between runs. A file whose contents are not what was stored, or
/// were stored under another key, counts as absent. Failures to read or write are never errors:
/// the module is then compiled anew.
class BinaryCache {
 public:
  using Binary = std::vector<std::byte>;

  /// In `quillon/kernels` of the user's folder (CacheFolder.h). Without one nothing is kept.
  BinaryCache();
  explicit BinaryCache(std::filesystem::path folder);

  /// `key` names all that the binary depends on: source, options, device and driver.
  std::optional<Binary> Find(std::string_view key) const;
  void Store(std::string_view key, const Binary& binary) const;
  void Forget(std::string_view key) const;

 private:
  std::filesystem::path FileOf(std::string_view key) const;

  std::filesystem::path folder_;
};

}  // namespace RefHost
