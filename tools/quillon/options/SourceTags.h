#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/orvmediatypes/ColorSpace.h"

namespace Quillon::Cli {

/// Colours that the user gives a picture in place of its own tags.
struct SourceOverride {
  std::optional<orvmediatypes::color::ColorDescription> colors;
  /// Whether `colors` tells the YCbCr matrix too; else the picture's own matrix stays.
  bool tellsMatrix = false;
};

/// What a picture is in: what its file says, with primaries and transfer of the override where
/// there is one. Range and chroma location stay those of the file. Throws CommandError when neither
/// tells primaries and transfer, or there is no conversion from them; `optionSuffix` is what the
/// options that tell them, --from and
/// --from-cicp, end with for this picture.
orvmediatypes::color::ColorDescription TaggedColors(
    const std::filesystem::path& path, const orvmediatypes::color::ColorDescription& file,
    const SourceOverride& given, const std::string& optionSuffix = {});

/// Refuses a gamma curve for a picture whose file holds linear light in floats, by the name of the
/// linear light that is meant. Throws CommandError.
void RefuseGammaOfFloats(const std::filesystem::path& path,
                         const orvmediatypes::color::ColorDescription& file, bool isFloat,
                         const SourceOverride& given);

}  // namespace Quillon::Cli
