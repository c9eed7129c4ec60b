#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "mapper/Mapping.h"
#include "tools/quillon/clip/LevelsFile.h"
#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/video/ClipReader.h"

namespace Quillon::Cli {

/// What was found out of a clip or picture.
struct Inspection {
  std::filesystem::path path;
  InputKind kind = InputKind::Clip;
  ClipInfo info;
  /// Measured light levels, where they were asked for.
  std::optional<ClipLevels> levels;
  /// Its scenes, where levels were measured.
  std::vector<ClipScene> scenes;
  /// The peak that it would be mapped from. Nothing where its tags do not tell its colours.
  std::optional<Mapper::SourcePeak> peak;
  /// Sentences on tags that do not fit each other or the content.
  std::vector<std::string> warnings;
};

/// Where tags and content of a clip disagree. Without levels only the tags are looked at.
std::vector<std::string> FindDisagreements(const ClipTags& tags,
                                           const std::optional<ClipLevels>& levels);

}  // namespace Quillon::Cli
