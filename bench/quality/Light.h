#pragma once

#include <array>

#include "tools/quillon/picture/DeltaEItp.h"

/// Light and signals of the quality bench, in double precision.
namespace Quality {

using Quillon::Cli::ICtCp;

/// Luminance of an SDR display's white, in nits.
inline constexpr double kWhiteNits = 203.0;

/// Linear BT.2020 components in nits.
struct Light {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

/// Code values of red, green and blue, 0 to 1.
struct Signal {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

enum class Gamut { BT709, P3, BT2020 };

/// Linear red, green and blue of a gamut in nits; below 0 for colours outside of it.
using Components = std::array<double, 3>;
Components ComponentsIn(Gamut gamut, const Light& light);
Light LightFrom(Gamut gamut, const Components& components);

/// Whether the chromaticity lies in the gamut, its boundary included. How bright it is matters not.
bool IsInside(Gamut gamut, const Light& light);

/// A chromaticity of CIE 1931 xy at a luminance in nits.
Light LightOfxyY(double x, double y, double nits);

/// The signal of BT.2100 PQ.
Signal EncodePQ(const Light& light);

/// What a BT.709 display with BT.1886's EOTF, a black of 0 and white at `kWhiteNits` shows.
Light ShownBy(const Signal& signal);

/// The code value, 0 to 255 and beyond, of a grey of so many nits on that display.
double GreyCode(double nits);

ICtCp ItpOf(const Light& light);

/// ITP (ITU-R BT.2124) in polar form. The hue is in degrees, -180 to 180, from the axis of T (half
/// of Ct) towards that of P (Cp).
struct Polar {
  double intensity = 0.0;
  double chroma = 0.0;
  double hue = 0.0;
};
Polar PolarOf(const ICtCp& color);
Polar PolarOf(const Light& light);
/// May lie outside of BT.2020.
Light LightOf(const Polar& color);

/// The largest chroma at an intensity and a hue that lies in the gamut with none of its BT.2020
/// components above the peak.
double BoundaryChroma(Gamut gamut, double intensity, double hue, double peakNits);

}  // namespace Quality
