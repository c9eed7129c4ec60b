#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Quillon::Cli {

struct AvifSize {
  std::int64_t width = 0;
  std::int64_t height = 0;
};

/// What the boxes of an ISO base media file (ISO/IEC 14496-12, 4.2) say without decoding.
struct AvifBoxes {
  /// Every box lies within the file, and the last one ends with it.
  bool complete = false;
  /// The file type names the brand of pictures with a gain map ("tmap", ISO 21496-1).
  bool hasGainMap = false;
  /// Of the pictures and parts of pictures, as the metadata gives them.
  std::vector<AvifSize> sizes;
};

AvifBoxes ScanAvifBoxes(std::span<const std::uint8_t> file);

}  // namespace Quillon::Cli
