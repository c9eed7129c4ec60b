#pragma once

#include <filesystem>
#include <optional>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/io/Still.h"

namespace Quillon::Cli {

/// A still picture to write.
struct StillOutput {
  /// In system memory, in the colour space that the file is to have. PNG and AVIF need H.273
  /// primaries and transfer; EXR holds the linear equivalent of any colour space. Of the metadata
  /// only what stands here is written: the mastering display and `light`, both in PNG alone.
  PX::VideoFrameRef frame;
  /// How the linear equivalent is made; its graphics white is EXR's whiteLuminance.
  orvmediatypes::color::ColorManagementSettings settings;
  ContentLight light;
  /// Bits of a component. PNG: 8 or 16 (by default 16 for PQ and HLG, else 8). EXR: 16 (half, the
  /// default) or 32 (float). AVIF: 10 (the default), 12, or 8 for colour spaces other than PQ and
  /// HLG.
  std::optional<int> depth;
  /// Replace a file that stands under the name already.
  bool overwrite = false;
};

/// Writes a PNG, EXR or AVIF file, by the extension of `path`. The file appears under its name
/// only when it is whole. Throws StillError.
void WriteStill(const StillOutput& output, const std::filesystem::path& path);

/// Whether a name has the extension of a still that is written.
bool NamesStill(const std::filesystem::path& path);

/// Throws the StillError that `WriteStill` would end with because of the name alone: an unknown
/// extension, a missing folder, something that stands there already.
void CheckStillTarget(const std::filesystem::path& path, bool overwrite);

}  // namespace Quillon::Cli
