#pragma once

#include "refhost/chromant/PixelConverter.h"
#include "refhost/chromant/PixelRows.h"
#include "refhost/kestrel/PlanarBuffer.h"

namespace RefHost {

// Rows of float red, green and blue planes, as zimg has them, from and to interleaved pixels.
// Without a converter the colours stay as they are.

/// Stores a row of the planes as `width` interleaved pixels, opaque. The planes are converted on
/// the way, and so have lost what they held.
void StoreRow(const PlanarBuffer& rgb, int row, int width, const PixelConverter* converter,
              ComponentType type, std::byte* pixels);

/// Fills a row of the planes from `width` interleaved pixels; the last one is repeated to the end
/// of the row. NaN becomes 0, so that integers made of it are 0, and huge values are bounded.
void LoadRow(const std::byte* pixels, ComponentType type, const PixelConverter* converter,
             int width, const PlanarBuffer& rgb, int row);

/// Converts the first `width` pixels of a row of the planes in place, with the same bounds and the
/// same repetition.
void ConvertRow(const PlanarBuffer& rgb, int row, int width, const PixelConverter& converter);

/// Makes a row of the planes what another one is.
void RepeatRow(const PlanarBuffer& rgb, int from, int to);

}  // namespace RefHost
