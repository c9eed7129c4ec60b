#include "tests/structure/IncludeOrder.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <set>
#include <string_view>

namespace fs = std::filesystem;

namespace {

struct Folder {
  std::string_view name;
  int level;
};

constexpr std::array<Folder, 7> kFolders{{{"engine", 0},
                                          {"gpu", 1},
                                          {"cpu", 2},
                                          {"tonemap", 3},
                                          {"curves", 4},
                                          {"base", 4},
                                          {"host", 5}}};

std::string_view TopFolder(std::string_view path) { return path.substr(0, path.find('/')); }

std::optional<int> LevelOf(std::string_view folder) {
  const auto* found = std::find_if(kFolders.begin(), kFolders.end(),
                                   [&](const Folder& known) { return known.name == folder; });
  if (found == kFolders.end()) return std::nullopt;
  return found->level;
}

bool IsSource(const fs::path& path) {
  static const std::set<std::string> kExtensions{".h", ".cpp", ".inc", ".cu", ".cl"};
  return kExtensions.contains(path.extension().string());
}

/// What stands between the delimiters of an include directive; nothing for other lines.
std::optional<std::string> IncludeIn(std::string_view line, char open, char close) {
  const auto skip = [&line](std::string_view text) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(text)) return false;
    line.remove_prefix(text.size());
    return true;
  };
  if (!skip("#") || !skip("include") || !skip({&open, 1})) return std::nullopt;
  return std::string(line.substr(0, line.find(close)));
}

std::vector<Include> ReadIncludes(const fs::path& root, char open, char close) {
  std::vector<Include> includes;
  for (const Folder& folder : kFolders) {
    if (!fs::exists(root / folder.name)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder.name)) {
      if (!entry.is_regular_file() || !IsSource(entry.path())) continue;
      std::ifstream file(entry.path());
      for (std::string line; std::getline(file, line);) {
        if (auto target = IncludeIn(line, open, close)) {
          includes.push_back(
              {entry.path().lexically_relative(root).generic_string(), *std::move(target)});
        }
      }
    }
  }
  return includes;
}

}  // namespace

std::vector<Include> ReadIncludes(const fs::path& root) { return ReadIncludes(root, '"', '"'); }

std::vector<Include> ReadSystemIncludes(const fs::path& root) {
  return ReadIncludes(root, '<', '>');
}

bool RunsDown(const Include& include) {
  if (include.target.find("..") != std::string::npos) return false;
  const std::string_view from = TopFolder(include.file);
  const std::string_view to = TopFolder(include.target);
  const std::optional<int> fromLevel = LevelOf(from);
  const std::optional<int> toLevel = LevelOf(to);
  if (!fromLevel || !toLevel) return false;
  if (from == "curves") return to == from;
  return from == to || *fromLevel < *toLevel;
}
