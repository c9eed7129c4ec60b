#pragma once

#include <cstdint>

namespace orvmediatypes {

struct PixelAspectRatio {
  std::int32_t numerator = 1;
  std::int32_t denominator = 1;
  friend bool operator==(const PixelAspectRatio&, const PixelAspectRatio&) = default;
};

/// Effort of a copy with conversion, 0 the least. The engine always asks for 4.
using RenderQuality = std::int32_t;

enum class FieldType : std::int32_t { Progressive = 0, UpperFirst = 1, LowerFirst = 2 };

}  // namespace orvmediatypes
