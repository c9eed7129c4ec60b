#pragma once

/// Soft knee: x itself up to the knee, then a hyperbola with slope 1 at the knee that maps the
/// source peak exactly onto the destination peak. x unchanged when the destination peak is not
/// below the source peak.
inline float SoftKnee(float x, float knee, float sourcePeak, float destinationPeak) {
  if (destinationPeak >= sourcePeak) return x;
  const float distance = x - knee;
  float compressed = distance;
  if (!(knee >= x)) {
    const float k = (sourcePeak - knee) * (destinationPeak - knee) / (sourcePeak - destinationPeak);
    compressed = distance * k / (distance + k);
  }
  return x - distance + compressed;
}
