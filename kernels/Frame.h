#pragma once

#include "curves/HalfFloat.h"
#include "kernels/KernelLanguage.h"

// Pixels as they are stored, blue, green, red and alpha, read and written whole.

typedef struct QUILLON_ALIGNED(16) FloatPixel {
  float components[4];
} FloatPixel;

typedef struct QUILLON_ALIGNED(8) HalfPixel {
  unsigned short components[4];
} HalfPixel;

QUILLON_FUNCTION int IsInside(GPUFrameDescriptor frame, unsigned column, unsigned row) {
  return column < frame.width && row < frame.height;
}

QUILLON_FUNCTION size_t PlaceOf(GPUFrameDescriptor frame, unsigned column, unsigned row) {
  return (size_t)row * frame.rowPitchPixels + column;
}

QUILLON_FUNCTION void LoadPixel(const QUILLON_GLOBAL void* pixels, unsigned formatFlag,
                                size_t place, float* pixel) {
  if (formatFlag != 0) {
    const FloatPixel stored = ((const QUILLON_GLOBAL FloatPixel*)pixels)[place];
    for (int c = 0; c < 4; ++c) pixel[c] = stored.components[c];
  } else {
    const HalfPixel stored = ((const QUILLON_GLOBAL HalfPixel*)pixels)[place];
    for (int c = 0; c < 4; ++c) pixel[c] = FromHalf(stored.components[c]);
  }
}

QUILLON_FUNCTION void StorePixel(QUILLON_GLOBAL void* pixels, unsigned formatFlag, size_t place,
                                 const float* pixel) {
  if (formatFlag != 0) {
    FloatPixel stored;
    for (int c = 0; c < 4; ++c) stored.components[c] = pixel[c];
    ((QUILLON_GLOBAL FloatPixel*)pixels)[place] = stored;
  } else {
    HalfPixel stored;
    for (int c = 0; c < 4; ++c) stored.components[c] = (unsigned short)ToHalf(pixel[c]);
    ((QUILLON_GLOBAL HalfPixel*)pixels)[place] = stored;
  }
}
