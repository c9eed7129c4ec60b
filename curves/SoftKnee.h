#pragma once

#include "curves/Language.h"

/// Soft knee: x itself up to the knee, then a hyperbola with slope 1 at the knee that maps the
/// source peak exactly onto the destination peak. x unchanged when the destination peak is not
/// below the source peak.
QUILLON_CURVE Real SoftKnee(Real x, float knee, float sourcePeak, float destinationPeak) {
  if (destinationPeak >= sourcePeak) return x;
  const float k = (sourcePeak - knee) * (destinationPeak - knee) / (sourcePeak - destinationPeak);
  const Real distance = x - knee;
  const Real compressed = knee >= x ? distance : distance * k / (distance + k);
  return x - distance + compressed;
}
