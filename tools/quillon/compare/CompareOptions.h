#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/quillon/compare/Compare.h"
#include "tools/quillon/compare/CompareViews.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/options/SourceTags.h"
#include "tools/quillon/process/Choice.h"

namespace Quillon::Cli {

/// What `--gamut` of `quillon compare` takes: ITU-T H.273 primaries.
inline constexpr std::array<Choice<std::uint8_t>, 3> kComparedGamuts = {
    {{"bt709", 1}, {"p3-d65", 12}, {"bt2020", 9}}};

/// The name that `--gamut` has for primaries; empty for those that it does not take.
std::string_view ComparedGamutName(std::uint8_t primaries);

/// One of the two pictures, as asked for.
struct ComparedFile {
  std::filesystem::path path;
  SourceOverride source;
};

/// What `quillon compare` was asked for, each value checked on its own.
struct CompareOptions {
  ComparedFile a;
  ComparedFile b;
  CompareSettings settings;
  /// The view to draw; empty: none.
  std::filesystem::path output;
  CompareView view = CompareView::SideBySide;
  std::optional<double> splitShare;
  /// Where the figures go as JSON; empty: nowhere; "-": standard output, in place of the table.
  std::filesystem::path json;
  std::int64_t maxPixels = kDefaultMaxPixels;  ///< of each picture
  bool overwrite = false;
  bool quiet = false;

  bool PrintsJson() const { return json == "-"; }
  bool WritesJson() const { return !json.empty() && !PrintsJson(); }
  /// The files that are written.
  std::vector<std::filesystem::path> Written() const;
};

/// Refuses combinations in which an option would have no effect or no meaning. Throws CommandError.
void CheckCompareOptions(const CompareOptions& options);

}  // namespace Quillon::Cli
