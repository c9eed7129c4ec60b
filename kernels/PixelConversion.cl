// The reference host's conversion between colour spaces and between float and half.

#include "kernels/Frame.h"
#include "refhost/chromant/ConversionParams.h"

/// One pixel from one frame to another of the same size; `converts` 0 leaves the colours alone. The
/// two may be one frame.
QUILLON_KERNEL ConvertPixels(QUILLON_FRAME(source), QUILLON_FRAME(destination), int converts,
                             const ConversionParams params) {
  const unsigned column = QUILLON_COLUMN;
  const unsigned row = QUILLON_ROW;
  if (!IsInside(destination, column, row)) return;
  float pixel[4];
  LoadPixel(QUILLON_PIXELS(source), source.formatFlag, PlaceOf(source, column, row), pixel);
  if (converts != 0) ConvertPixel(params, pixel);
  StorePixel(QUILLON_PIXELS(destination), destination.formatFlag, PlaceOf(destination, column, row),
             pixel);
}
