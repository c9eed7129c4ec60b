// The mapper's fit of linear light into the gamut of its destination.

#include "curves/GamutFit.h"
#include "kernels/Frame.h"

/// One pixel, in place. `table` is one pixel as far as it is a frame; its memory holds the table.
QUILLON_KERNEL FitPixels(QUILLON_FRAME(frame), QUILLON_FRAME(table), const GamutFitParams params) {
  const unsigned column = QUILLON_COLUMN;
  const unsigned row = QUILLON_ROW;
  if (!IsInside(frame, column, row)) return;
  const size_t place = PlaceOf(frame, column, row);
  float pixel[4];
  LoadPixel(QUILLON_PIXELS(frame), frame.formatFlag, place, pixel);
  FitToGamut(pixel, (QUILLON_TABLE)QUILLON_PIXELS(table), params);
  StorePixel(QUILLON_PIXELS(frame), frame.formatFlag, place, pixel);
}
