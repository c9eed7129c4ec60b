#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/orvmediatypes/ColorSpace.h"

/// Colours that the user gives a picture in place of its own tags.
struct SourceOverride {
  std::optional<orvmediatypes::color::ColorDescription> colors;
  /// Whether `colors` tells the YCbCr matrix too; else the picture's own matrix stays.
  bool tellsMatrix = false;
};

/// What a picture is in: what its file says, with primaries and transfer of the override where
/// there is one. Range and chroma location stay those of the file.
orvmediatypes::color::ColorDescription TaggedSource(
    const orvmediatypes::color::ColorDescription& file, const SourceOverride& given);

/// Throws CommandError when primaries or transfer are not told. `optionSuffix` is what the options
/// that tell them, --from and --from-cicp, end with for this picture.
void RequireTags(const std::filesystem::path& path,
                 const orvmediatypes::color::ColorDescription& tagged,
                 const std::string& optionSuffix);
