#pragma once

#include <array>
#include <optional>

#include <zimg.h>

#include "host/orvmediatypes/ColorSpace.h"
#include "refhost/kestrel/PixelFormats.h"

namespace RefHost {

/// Rows of a YCbCr frame as zimg is to see them: planes of codes in the low bits. `width` and
/// `height` hold whole chroma samples. Nothing where matrix or chroma location are not known here.
/// A matrix of 0 makes 4:4:4 planes green, blue and red.
std::optional<zimg_image_format> ZimgFormatOf(const FormatInfo& info,
                                              const orvmediatypes::color::ColorDescription& colors,
                                              int width, int height);

/// Which of zimg's planes holds each component of such a frame.
std::array<int, 3> ZimgPlanes(const orvmediatypes::color::ColorDescription& colors);

/// Float red, green and blue planes of the same size, and with the primaries that the matrix of
/// `format` may need.
zimg_image_format FloatRgbLike(const zimg_image_format& format);

}  // namespace RefHost
