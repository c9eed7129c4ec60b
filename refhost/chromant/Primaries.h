#pragma once

#include <array>
#include <optional>

#include "host/orvmediatypes/ColorSpace.h"

namespace RefHost {

/// Row by row, acting on column vectors of red, green and blue (or X, Y and Z).
using Matrix3 = std::array<double, 9>;

/// Linear RGB to CIE XYZ, white at Y = 1. The second row holds the luminance of the primaries.
/// The chromaticities must be such as `ChromaticitiesOf` gives.
Matrix3 RgbToXyz(const orvmediatypes::color::Chromaticities& chromaticities);

/// Linear RGB to linear RGB. White goes to white: where the white points differ, colours are
/// adapted by the Bradford transform. To and from CIE XYZ (`HaveCommonGrey` false) nothing is
/// adapted.
Matrix3 RgbToRgb(const orvmediatypes::color::Chromaticities& source,
                 const orvmediatypes::color::Chromaticities& destination);

/// Whether equal components are grey on both sides. False for CIE XYZ (H.273 primaries 10), whose
/// components are the tristimulus values of light as it was, whatever its white.
bool HaveCommonGrey(const orvmediatypes::color::Chromaticities& source,
                    const orvmediatypes::color::Chromaticities& destination);

/// Whether the coordinates are the same but for the rounding of files that store them as floats or
/// in steps of 0.00001 or more.
bool AreSameChromaticities(const orvmediatypes::color::Chromaticities& first,
                           const orvmediatypes::color::Chromaticities& second);

}  // namespace RefHost
