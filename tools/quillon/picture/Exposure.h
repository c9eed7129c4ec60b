#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "tools/quillon/options/MappingOptions.h"

namespace Quillon::Cli {

/// The factor on all light of a scene-linear picture or clip before anything else is done to it.
struct Exposure {
  double stops = 0.0;
  /// What an automatic exposure was found from; nothing for one that was given.
  std::optional<double> logAverageNits;

  double Factor() const;
  /// For people: "+1.5 stops (auto: log-average 12.9 nits to 36.54, which is 0.18 of white)".
  std::string Describe(int white) const;
};

/// What --exposure comes to for pictures in these colours; nothing where it was not given.
/// `logAverageNits` is called for an automatic one. `path` is what messages call the picture.
/// Throws CommandError for colours whose light has a scale of its own.
std::optional<Exposure> ResolveExposure(const MappingOptions& options,
                                        const std::filesystem::path& path,
                                        const orvmediatypes::color::ColorDescription& colors,
                                        const std::function<double()>& logAverageNits);

}  // namespace Quillon::Cli
