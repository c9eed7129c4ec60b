#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "bench/quality/Light.h"

namespace Quality {

/// A run of pixels in a picture.
struct Part {
  std::size_t first = 0;
  std::size_t count = 0;

  template <class Pixel>
  std::span<const Pixel> Of(const std::vector<Pixel>& pixels) const {
    return std::span(pixels).subspan(first, count);
  }
};

/// The synthetic picture for a peak: its pixels, one after the other, and what they are. No
/// component is above the peak. All colours are in BT.2020.
///
/// Sweeps go round the full circle of ITP hue in steps of 5 degrees, at the intensities of greys of
/// 20, 100, 203, 400, 1000, 2000 and 4000 nits as far as they lie below the peak. Their chroma is a
/// share of that on the boundary of a gamut at that intensity and hue.
struct Charts {
  double peakNits = 0.0;
  std::vector<Light> light;
  /// Shares of 0.2 to 1 of the BT.709 boundary.
  Part insideBt709;
  /// Shares of 0.2 to 1 of the P3 boundary: P3-D65, part of them also inside of BT.709.
  Part insideP3;
  /// What of the P3 sweep and of the BT.2020 boundary has a chromaticity outside of BT.709.
  Part outsideBt709;
  /// Chromaticities of skin, sky, foliage and further colours of a chart for cameras, at 50, 100,
  /// 203, 400 and 1000 nits.
  Part patches;
  /// Ramps from 0.1 nits to the peak in steps of a quarter of a delta-E ITP in intensity: grey, and
  /// hues each 30 degrees at half of the BT.709 boundary, on it, and on those of P3 and BT.2020.
  std::vector<Part> ramps;
};

Charts MakeCharts(double peakNits);

}  // namespace Quality
