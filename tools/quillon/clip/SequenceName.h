#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Quillon::Cli {

/// The name of an image sequence: a file name with one "%d" or "%05d" where the number goes.
class SequenceName {
 public:
  /// Nothing for names without such a place, or with several.
  static std::optional<SequenceName> Parse(const std::filesystem::path& path);

  std::filesystem::path FileOf(std::int64_t number) const;
  /// The numbers of the files that exist, rising.
  std::vector<std::int64_t> ExistingNumbers() const;

 private:
  std::optional<std::int64_t> NumberOf(const std::string& fileName) const;

  std::filesystem::path folder_;
  std::string before_;
  std::string after_;
  std::size_t digits_ = 1;  ///< numbers with fewer get leading zeros
};

}  // namespace Quillon::Cli
