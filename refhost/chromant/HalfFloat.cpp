#include "refhost/chromant/HalfFloat.h"

#include <bit>
#include <cmath>

namespace CHR {

namespace {

constexpr std::uint32_t kSign = 0x80000000U;
constexpr std::uint32_t kFloatInfinity = 0x7F800000U;
constexpr std::uint16_t kHalfInfinity = 0x7C00U;
/// Difference of the two exponents' biases, where a float keeps its exponent.
constexpr std::uint32_t kRebias = (127U - 15U) << 23U;
constexpr std::uint32_t kSmallestNormal = (127U - 14U) << 23U;
constexpr std::uint32_t kBeyondLargest = (127U + 16U) << 23U;

}  // namespace

float FromHalf(std::uint16_t half) {
  const std::uint32_t sign = (half & 0x8000U) << 16U;
  const std::uint32_t magnitude = half & 0x7FFFU;
  if (magnitude < 0x0400U) {
    const float value = std::ldexp(static_cast<float>(magnitude), -24);
    return sign != 0 ? -value : value;
  }
  const std::uint32_t rebias = magnitude >= kHalfInfinity ? 2 * kRebias : kRebias;
  return std::bit_cast<float>(sign | ((magnitude << 13U) + rebias));
}

std::uint16_t ToHalf(float value) {
  const std::uint32_t bits = std::bit_cast<std::uint32_t>(value);
  const auto sign = static_cast<std::uint16_t>((bits & kSign) >> 16U);
  const std::uint32_t magnitude = bits & ~kSign;
  std::uint32_t half = 0;
  if (magnitude > kFloatInfinity) {
    half = 0x7E00U;
  } else if (magnitude >= kBeyondLargest) {
    half = kHalfInfinity;
  } else if (magnitude < kSmallestNormal) {
    // In units of 2^-24, the step of subnormal halves, nearbyint rounds as the format does.
    half =
        static_cast<std::uint32_t>(std::nearbyint(std::ldexp(std::bit_cast<float>(magnitude), 24)));
  } else {
    const std::uint32_t odd = (magnitude >> 13U) & 1U;
    half = (magnitude - kRebias + 0x0FFFU + odd) >> 13U;
  }
  return static_cast<std::uint16_t>(sign | half);
}

}  // namespace CHR
