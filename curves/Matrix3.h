#pragma once

#include "curves/Language.h"

// 3x3 matrices of doubles, nine numbers row by row, acting on column vectors. Results may not
// overlap inputs unless it says so.

QUILLON_FUNCTION void MultiplyMatrix3(const double* left, const double* right, double* product) {
  for (int i = 0; i < 9; ++i) {
    const int column = i % 3;
    const int row = i - column;
    product[i] = left[row] * right[column] + left[row + 1] * right[column + 3] +
                 left[row + 2] * right[column + 6];
  }
}

/// A vector of three, in place.
QUILLON_FUNCTION void TransformByMatrix3(const double* matrix, double* vector) {
  const double x = vector[0];
  const double y = vector[1];
  const double z = vector[2];
  vector[0] = matrix[0] * x + matrix[1] * y + matrix[2] * z;
  vector[1] = matrix[3] * x + matrix[4] * y + matrix[5] * z;
  vector[2] = matrix[6] * x + matrix[7] * y + matrix[8] * z;
}

/// Returns the determinant. Where it is 0 the matrix has no inverse and the result's numbers mean
/// nothing.
QUILLON_FUNCTION double InvertMatrix3(const double* m, double* inverse) {
  const double c0 = m[4] * m[8] - m[5] * m[7];
  const double c1 = m[5] * m[6] - m[3] * m[8];
  const double c2 = m[3] * m[7] - m[4] * m[6];
  const double determinant = m[0] * c0 + m[1] * c1 + m[2] * c2;
  inverse[0] = c0 / determinant;
  inverse[1] = (m[2] * m[7] - m[1] * m[8]) / determinant;
  inverse[2] = (m[1] * m[5] - m[2] * m[4]) / determinant;
  inverse[3] = c1 / determinant;
  inverse[4] = (m[0] * m[8] - m[2] * m[6]) / determinant;
  inverse[5] = (m[2] * m[3] - m[0] * m[5]) / determinant;
  inverse[6] = c2 / determinant;
  inverse[7] = (m[1] * m[6] - m[0] * m[7]) / determinant;
  inverse[8] = (m[0] * m[4] - m[1] * m[3]) / determinant;
  return determinant;
}

/// Linear light of one pixel (red, green, blue) from one set of primaries into another, in place.
/// The matrix must map white to white.
///
/// Grey stays grey to the last bit: three equal channels are what the matrix would give but for
/// its rounding, and they pass as they are.
QUILLON_FUNCTION void ConvertPrimaries(const double* matrix, double* rgb) {
  if (rgb[0] == rgb[1] && rgb[1] == rgb[2]) return;
  TransformByMatrix3(matrix, rgb);
}
