#pragma once

#include "curves/Matrix3.h"
#include "refhost/chromant/TransferParams.h"

// A conversion between two colour spaces, in every language that the curves are written in.

/// What a conversion reads, laid out alike in all of them.
typedef struct ConversionParams {
  TransferParams source;
  TransferParams destination;
  /// Between the primaries, row by row.
  double matrix[9];
  /// The primaries differ.
  int hasMatrix;
  /// The matrix maps grey to grey.
  int hasCommonGrey;
} ConversionParams;

/// One pixel in place: red, green and blue of the source's signal, and then of the destination's.
QUILLON_FUNCTION void ConvertSignals(ConversionParams p, double* rgb) {
  DecodePixel(p.source, rgb);
  if (p.hasMatrix != 0) {
    if (p.hasCommonGrey != 0) {
      ConvertPrimaries(p.matrix, rgb);
    } else {
      TransformByMatrix3(p.matrix, rgb);
    }
  }
  EncodePixel(p.destination, rgb);
}

/// One float pixel in place (blue, green, red; alpha is not looked at). Light is worked on in
/// double precision and rounded once.
QUILLON_FUNCTION void ConvertPixel(ConversionParams p, float* pixel) {
  double rgb[3];
  for (int c = 0; c < 3; ++c) rgb[c] = (double)pixel[2 - c];
  ConvertSignals(p, rgb);
  for (int c = 0; c < 3; ++c) pixel[2 - c] = (float)rgb[c];
}
