#include "tools/quillon/io/NameBeside.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include <unistd.h>

#include "tools/quillon/io/TargetFile.h"

namespace Quillon::Cli {

namespace {

std::size_t LongestName(const std::filesystem::path& folder) {
  constexpr long kUsual = 255;
  const long longest = pathconf(folder.c_str(), _PC_NAME_MAX);
  return static_cast<std::size_t>(longest > 0 ? longest : kUsual);
}

/// FNV-1a, since std::hash may differ from one build to the next.
std::string Hash(const std::string& text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
  return digits;
}

bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

}  // namespace

std::filesystem::path NameBeside(const std::filesystem::path& target, const std::string& stem,
                                 const std::string& ending) {
  const std::filesystem::path folder = FolderOf(target);
  const std::size_t longest = LongestName(folder);
  if (stem.size() + ending.size() <= longest) return target.parent_path() / (stem + ending);
  const std::string rest = "~" + Hash(stem) + ending;
  std::size_t kept = rest.size() < longest ? longest - rest.size() : 0;
  while (kept > 0 && ContinuesCharacter(stem[kept])) --kept;
  return target.parent_path() / (stem.substr(0, kept) + rest);
}

}  // namespace Quillon::Cli
