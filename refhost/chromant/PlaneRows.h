#pragma once

#include <cstddef>

namespace RefHost {

/// Blue, green and red of interleaved float pixels as planes.
void SplitPixels(const float* pixels, std::size_t count, float* red, float* green, float* blue);

/// Planes as interleaved float pixels, opaque.
void JoinPixels(const float* red, const float* green, const float* blue, std::size_t count,
                float* pixels);

/// NaN becomes 0, and what is beyond `most` or its negative becomes that.
void BoundSamples(float* samples, std::size_t count, float most);

}  // namespace RefHost
