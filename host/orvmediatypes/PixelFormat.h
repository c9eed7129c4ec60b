#pragma once

#include <cstdint>

namespace orvmediatypes {

/// Layout of a frame's pixels: a four-character code and a descriptor word. Bits 1 to 3 of the
/// descriptor are the component-depth code (0: 8 bits, 1: 10, 2: 16, 3: 16 as half float, 4: 24,
/// 5: 32 as float); bits 19 and 20 hold 1 for four interleaved components.
struct PixelFormat {
  std::uint32_t fourCC = 0;
  std::uint32_t descriptor = 0;
  friend constexpr bool operator==(const PixelFormat&, const PixelFormat&) = default;
};
static_assert(sizeof(PixelFormat) == 8);

/// Four 32-bit floats a pixel in the order blue, green, red, alpha ("BGra" in memory).
inline constexpr PixelFormat kLinearFloatBGRA{0x61724742U, 0x0008013AU};

}  // namespace orvmediatypes
