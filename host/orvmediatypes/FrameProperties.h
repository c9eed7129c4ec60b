#pragma once

#include <cstdint>

// What a frame carries beside its size, format and colours. The engine maps no pixel otherwise for
// any of it: it sees to it that a working frame carries the same, for the host's own copies.

namespace orvmediatypes {

/// Width of a pixel over its height. The engine hands it from the source to the working frame and
/// does not look at it.
struct PixelAspectRatio {
  std::int32_t numerator = 1;
  std::int32_t denominator = 1;
  friend bool operator==(const PixelAspectRatio&, const PixelAspectRatio&) = default;
};

/// Effort of a copy with conversion, 0 the least. The engine asks for 4 always, whatever the
/// settings; what the numbers mean beyond their order is the host's own.
using RenderQuality = std::int32_t;

/// Whether a frame is one picture or two that were taken one after the other, and whose lines come
/// first. Handed on like the aspect; every line is mapped alike.
enum class FieldType : std::int32_t { Progressive = 0, UpperFirst = 1, LowerFirst = 2 };

}  // namespace orvmediatypes
