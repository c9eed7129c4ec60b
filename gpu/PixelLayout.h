#pragma once

#include <array>
#include <cstdint>

#include "host/orvmediatypes/PixelFormat.h"

namespace Quillon {

/// Bits of one component by the component-depth code of a format's descriptor; 0 for codes that
/// mean nothing.
constexpr std::uint32_t BitsPerComponent(std::uint32_t descriptor) {
  constexpr std::array<std::uint32_t, 8> kBitsByDepthCode = {8, 10, 16, 16, 24, 32, 0, 0};
  return kBitsByDepthCode[descriptor >> 1U & 7U];
}

/// Bytes of four interleaved components: 4, 8, 12 or 16, where 10-bit ones are packed into 4; 0
/// for depth codes that mean nothing.
constexpr std::uint32_t BytesOfFourComponents(std::uint32_t descriptor) {
  const std::uint32_t bits = BitsPerComponent(descriptor);
  return bits == 10 ? 4 : bits * 4 / 8;
}

/// Bytes of one pixel; 0 for formats that kernels cannot work on.
constexpr std::uint32_t BytesPerPixel(orvmediatypes::PixelFormat format) {
  constexpr std::uint32_t kFourInterleaved = 1;
  const std::uint32_t layout = format.descriptor >> 19U & 3U;
  return layout == kFourInterleaved ? BytesOfFourComponents(format.descriptor) : 0;
}

/// What kernels are told of the components: 0 for half floats, else 1.
constexpr std::uint32_t FormatFlag(orvmediatypes::PixelFormat format) {
  constexpr std::uint32_t kDepthMask = 14;
  constexpr std::uint32_t kHalfFloat = 6;
  return (format.descriptor & kDepthMask) != kHalfFloat ? 1 : 0;
}

}  // namespace Quillon
