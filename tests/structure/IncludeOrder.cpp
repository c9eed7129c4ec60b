#include "tests/structure/IncludeOrder.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <set>
#include <string_view>

namespace fs = std::filesystem;

namespace {

/// A folder with all that lies in it and not in another of these. It includes what is of a greater
/// level, and itself.
struct Folder {
  std::string_view name;
  int level;
};

constexpr std::array<Folder, 24> kFolders{{{"tools/quillon", 0},
                                           {"tools/quillon/modules", 1},
                                           {"tools/quillon/map", 2},
                                           {"tools/quillon/compare", 2},
                                           {"tools/quillon/curve", 2},
                                           {"tools/quillon/lut", 2},
                                           {"tools/quillon/chart", 2},
                                           {"tools/quillon/inspect", 2},
                                           {"tools/quillon/devices", 2},
                                           {"tools/quillon/clip", 3},
                                           {"tools/quillon/picture", 4},
                                           {"tools/quillon/video", 5},
                                           {"tools/quillon/plot", 5},
                                           {"tools/quillon/options", 5},
                                           {"tools/quillon/io", 6},
                                           {"tools/quillon/process", 7},
                                           {"mapper", 8},
                                           {"engine", 9},
                                           {"gpu", 10},
                                           {"cpu", 11},
                                           {"tonemap", 12},
                                           {"curves", 13},
                                           {"base", 13},
                                           {"host", 14}}};

constexpr int kMapperLevel = 8;

/// The folder of the list that a file lies in, the innermost.
const Folder* FolderOf(std::string_view path) {
  const Folder* innermost = nullptr;
  for (const Folder& folder : kFolders) {
    const bool within = path.size() > folder.name.size() && path.starts_with(folder.name) &&
                        path[folder.name.size()] == '/';
    if (!within) continue;
    if (innermost == nullptr || folder.name.size() > innermost->name.size()) innermost = &folder;
  }
  return innermost;
}

std::string_view TopFolder(std::string_view path) { return path.substr(0, path.find('/')); }

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
  for (const char* folder :
       {"tools", "mapper", "engine", "gpu", "cpu", "tonemap", "curves", "base", "host"}) {
    if (!fs::exists(root / folder)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
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
  const Folder* const from = FolderOf(include.file);
  if (from == nullptr) return false;
  const std::string_view top = TopFolder(include.target);
  // Programs are on the reference host; they reach the engine through the mapper.
  if (from->level <= kMapperLevel && top == "refhost") return true;
  const Folder* const to = FolderOf(include.target);
  if (to == nullptr) return false;
  if (from->name == "curves") return to == from;
  const bool program = from->level < kMapperLevel;
  if (program && to->level > kMapperLevel && top != "host" && top != "curves") return false;
  return from == to || from->level < to->level;
}
