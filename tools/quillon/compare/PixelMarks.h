#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/quillon/picture/PictureLight.h"

namespace Quillon::Cli {

/// What stands out in a pixel; marks are added up.
enum PixelMark : std::uint8_t {
  /// A component of the signal is at or beyond full scale. Linear light has no full scale: none of
  /// its pixels is clipped.
  kClipped = 1,
  /// A component of linear light in the gamut's primaries lies more than 0.01 nits below 0.
  kOutOfGamut = 2,
  /// A component of the signal or of its light is not a number or infinite. Such a pixel has no
  /// other mark.
  kNotFinite = 4,
};

/// The marks of a picture, row by row.
struct PixelMarks {
  std::vector<std::uint8_t> marks;
  bool hasFullScale = true;

  /// Pixels that have the mark.
  std::int64_t Count(PixelMark mark) const;
};

/// `gamutPrimaries` are ITU-T H.273 primaries. Throws CommandError.
PixelMarks MarkPixels(const PictureLight& picture, std::uint8_t gamutPrimaries, int white);

}  // namespace Quillon::Cli
