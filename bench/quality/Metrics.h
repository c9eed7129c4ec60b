#pragma once

#include <cstddef>
#include <span>

#include "bench/quality/Light.h"

/// How far the pixels of a result lie from those of its source, which stand at the same places.
/// ITP, its hue and chroma are those of ITU-R BT.2124; both sides are light as displays show it.
namespace Quality {

/// Colours with less chroma have no hue to speak of, and none to keep.
inline constexpr double kLeastChroma = 0.02;

/// Angle between the hues of source and result, of pixels that have a hue on both sides.
struct HueError {
  double meanDegrees = 0.0;
  double maxDegrees = 0.0;
  std::size_t pixels = 0;  ///< 0: none has, and the rest means nothing
  friend bool operator==(const HueError&, const HueError&) = default;
};
HueError MeasureHueError(std::span<const Light> source, std::span<const Light> result);

/// 1 less the mean of min(1, result's chroma / source's chroma), over the pixels that have a hue in
/// the source and the intensity of greys from 100 to 4000 nits. 0 where there are none.
double MeasureChromaLost(std::span<const Light> source, std::span<const Light> result);

/// Pixels of a ramp, which grows brighter, that come out darker than one before them: by more than
/// 0.1 of 255 code values of the grey of the same ITP intensity.
struct OrderViolations {
  std::size_t pixels = 0;
  double worstCodes = 0.0;
  friend bool operator==(const OrderViolations&, const OrderViolations&) = default;
};
OrderViolations CountOrderViolations(std::span<const Light> result);

/// Neighbours that lie more than 1.5 delta-E ITP apart, where in the source they lie at most 0.5
/// apart.
std::size_t CountBands(std::span<const Light> source, std::span<const Light> result);

/// Channels that are 0 or 1, the same, in a pixel and the next, although the source's BT.709 light
/// in that channel changes between the two. At most three times the pixels less one.
std::size_t CountClipped(std::span<const Light> source, std::span<const Signal> result);

/// Delta-E ITP of each pixel.
struct Difference {
  double mean = 0.0;
  double percentile95 = 0.0;
  friend bool operator==(const Difference&, const Difference&) = default;
};
Difference MeasureDifference(std::span<const Light> reference, std::span<const Light> result);

}  // namespace Quality
