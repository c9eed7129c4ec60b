#include "tools/quillon/map/ClipOptions.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "tools/quillon/io/TargetFile.h"

namespace Quillon::Cli {

std::string ClipOptions::FirstGiven() const {
  const std::array<std::pair<bool, const char*>, 11> given = {{
      {encoding.codec.has_value(), "--codec"},
      {encoding.sampling.has_value(), "--chroma"},
      {encoding.quality.has_value(), "--quality"},
      {encoding.preset.has_value(), "--preset"},
      {sequenceRate.has_value(), "--fps"},
      {frames.has_value(), "--frames"},
      {chunk.has_value(), "--chunk"},
      {progress.has_value(), "--progress"},
      {resume, "--resume"},
      {dryRun, "--dry-run"},
      {keepDamaged, "--keep-damaged"},
  }};
  for (const auto& [isGiven, name] : given) {
    if (isGiven) return name;
  }
  return {};
}

bool NamesClip(const std::filesystem::path& path) {
  const std::string extension = LowerCaseExtension(path);
  constexpr std::array<std::string_view, 4> kExtensions = {".mp4", ".mov", ".mkv", ".webm"};
  return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

}  // namespace Quillon::Cli
