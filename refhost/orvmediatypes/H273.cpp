#include "refhost/orvmediatypes/H273.h"

#include <cmath>

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;

namespace RefHost {

namespace {

constexpr Chromaticity kD65{0.3127, 0.3290};
constexpr Chromaticity kIlluminantC{0.310, 0.316};
constexpr Chromaticity kEqualEnergy{1.0 / 3.0, 1.0 / 3.0};
constexpr Chromaticity kDCIWhite{0.314, 0.351};

std::optional<Chromaticities> OfCodePoint(std::uint8_t primaries) {
  switch (primaries) {
    case kPrimariesBT709:
      return Chromaticities{{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, kD65};
    case kPrimariesBT470M:
      return Chromaticities{{0.67, 0.33}, {0.21, 0.71}, {0.14, 0.08}, kIlluminantC};
    case kPrimariesBT470BG:
      return Chromaticities{{0.64, 0.33}, {0.29, 0.60}, {0.15, 0.06}, kD65};
    case kPrimariesSMPTE170M:
    case kPrimariesSMPTE240M:
      return Chromaticities{{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, kD65};
    case kPrimariesFilm:
      return Chromaticities{{0.681, 0.319}, {0.243, 0.692}, {0.145, 0.049}, kIlluminantC};
    case kPrimariesBT2020:
      return Chromaticities{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, kD65};
    case kPrimariesXYZ:
      return Chromaticities{{1.0, 0.0}, {0.0, 1.0}, {0.0, 0.0}, kEqualEnergy};
    case kPrimariesDCIP3:
      return Chromaticities{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, kDCIWhite};
    case kPrimariesP3D65:
      return Chromaticities{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, kD65};
    case kPrimariesEBU3213:
      return Chromaticities{{0.630, 0.340}, {0.295, 0.605}, {0.155, 0.077}, kD65};
    default:
      return std::nullopt;
  }
}

/// Twice the area of a triangle of the xy diagram, signed.
double DoubleArea(const Chromaticity& a, const Chromaticity& b, const Chromaticity& c) {
  return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

/// Whether each primary has a positive share in white. False for NaN, for primaries on one line
/// and for a white outside their triangle or without luminance.
bool SpansAColorSpace(const Chromaticities& c) {
  constexpr double kSmallestArea = 1e-6;
  const double area = DoubleArea(c.red, c.green, c.blue);
  if (!std::isfinite(area) || std::abs(area) <= kSmallestArea) return false;
  return DoubleArea(c.white, c.green, c.blue) / area > 0.0 &&
         DoubleArea(c.red, c.white, c.blue) / area > 0.0 &&
         DoubleArea(c.red, c.green, c.white) / area > 0.0 && c.white.y > kSmallestArea;
}

}  // namespace

std::optional<Chromaticities> ChromaticitiesOf(const orvmediatypes::color::ColorSpace& colorSpace) {
  const auto& description = colorSpace.Description();
  if (description.primaries != kUnspecifiedCodePoint) return OfCodePoint(description.primaries);
  if (!SpansAColorSpace(description.chromaticities)) return std::nullopt;
  return description.chromaticities;
}

}  // namespace RefHost
