#include "refhost/chromant/Primaries.h"

#include <cmath>
#include <cstddef>

#include "curves/Matrix3.h"

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;

namespace RefHost {

namespace {

using Vector3 = std::array<double, 3>;

constexpr Matrix3 kBradford = {0.8951,  0.2664,  -0.1614,  //
                               -0.7502, 1.7135,  0.0367,   //
                               0.0389,  -0.0685, 1.0296};

Matrix3 Inverse(const Matrix3& matrix) {
  Matrix3 inverse;
  InvertMatrix3(matrix.data(), inverse.data());
  return inverse;
}

Matrix3 Product(const Matrix3& left, const Matrix3& right) {
  Matrix3 product;
  MultiplyMatrix3(left.data(), right.data(), product.data());
  return product;
}

Vector3 Transformed(const Matrix3& matrix, Vector3 vector) {
  TransformByMatrix3(matrix.data(), vector.data());
  return vector;
}

/// Multiplies each column by its own factor.
Matrix3 WithScaledColumns(Matrix3 matrix, const Vector3& factors) {
  for (std::size_t i = 0; i < matrix.size(); ++i) matrix[i] *= factors[i % 3];
  return matrix;
}

Vector3 XyzOfWhite(const Chromaticity& white) {
  return {white.x / white.y, 1.0, (1.0 - white.x - white.y) / white.y};
}

Matrix3 Adaptation(const Chromaticity& from, const Chromaticity& to) {
  const Vector3 fromCone = Transformed(kBradford, XyzOfWhite(from));
  const Vector3 toCone = Transformed(kBradford, XyzOfWhite(to));
  const Vector3 gains = {toCone[0] / fromCone[0], toCone[1] / fromCone[1], toCone[2] / fromCone[2]};
  return Product(WithScaledColumns(Inverse(kBradford), gains), kBradford);
}

/// CIE XYZ in the place of RGB.
constexpr Chromaticities kXyz = {{1.0, 0.0}, {0.0, 1.0}, {0.0, 0.0}, {1.0 / 3.0, 1.0 / 3.0}};

bool IsSamePoint(const Chromaticity& first, const Chromaticity& second) {
  constexpr double kRounding = 5e-6;
  return std::abs(first.x - second.x) <= kRounding && std::abs(first.y - second.y) <= kRounding;
}

}  // namespace

Matrix3 RgbToXyz(const Chromaticities& c) {
  const std::array<Chromaticity, 3> points = {c.red, c.green, c.blue};
  Matrix3 primaries;
  for (std::size_t i = 0; i < points.size(); ++i) {
    primaries[i] = points[i].x;
    primaries[3 + i] = points[i].y;
    primaries[6 + i] = 1.0 - points[i].x - points[i].y;
  }
  return WithScaledColumns(primaries, Transformed(Inverse(primaries), XyzOfWhite(c.white)));
}

Matrix3 RgbToRgb(const Chromaticities& source, const Chromaticities& destination) {
  Matrix3 toXyz = RgbToXyz(source);
  if (HaveCommonGrey(source, destination) && !IsSamePoint(source.white, destination.white)) {
    toXyz = Product(Adaptation(source.white, destination.white), toXyz);
  }
  return Product(Inverse(RgbToXyz(destination)), toXyz);
}

bool HaveCommonGrey(const Chromaticities& source, const Chromaticities& destination) {
  return !AreSameChromaticities(source, kXyz) && !AreSameChromaticities(destination, kXyz);
}

bool AreSameChromaticities(const Chromaticities& first, const Chromaticities& second) {
  return IsSamePoint(first.red, second.red) && IsSamePoint(first.green, second.green) &&
         IsSamePoint(first.blue, second.blue) && IsSamePoint(first.white, second.white);
}

}  // namespace RefHost
