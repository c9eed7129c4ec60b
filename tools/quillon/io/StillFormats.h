#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quillon/io/StillSource.h"
#include "tools/quillon/io/WriteStill.h"

namespace Quillon::Cli {

/// Bytes at a place by which files of a format are known.
struct Mark {
  std::size_t offset;
  std::string_view bytes;

  bool IsIn(std::span<const std::uint8_t> file) const;
};

/// A format of stills that is read, and written where it has an encoder.
struct StillFormat {
  std::string_view name;
  Mark mark;
  Still (*read)(const StillSource& source);
  /// Of files that are written, lower case; empty: none are.
  std::string_view extension;
  /// The bytes of a file; `path` is for messages. Null: none are written.
  std::vector<std::uint8_t> (*encode)(const StillOutput& output, const std::filesystem::path& path);
  /// Floats, which may lie beyond the gamut of their primaries.
  bool holdsAnyColor = false;
};

/// All of them. Reading, writing, help texts and messages are made of this table.
std::span<const StillFormat> StillFormats();

/// Whether a name has the extension of a format that holds any colour.
bool HoldsAnyColor(const std::filesystem::path& name);

/// "EXR, Radiance HDR, PNG or AVIF"
std::string ReadStillNames();

/// The same of those that are written: "EXR, PNG or AVIF", ".exr, .png or .avif".
std::string WrittenStillNames();
std::string WrittenStillExtensions();

}  // namespace Quillon::Cli
