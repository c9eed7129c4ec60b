#pragma once

#include <cstdint>

namespace CHR {

/// IEEE 754 binary16, by its bits. NaN stays NaN.
float FromHalf(std::uint16_t half);

/// Rounds to nearest, ties to even; what is too large becomes infinite.
std::uint16_t ToHalf(float value);

}  // namespace CHR
