#pragma once

#include <cstdint>

namespace orvmediatypes {

/// Layout of a frame's pixels. Two formats are one when both words are equal.
///
/// In system memory the engine works on linear float BGRA, below; frames of any other format go
/// through `KS::VideoFrameManipulators::CopyFrame`, and the format is between the two calls of the
/// host's own functions. On a GPU it works in the source's own format, and reads the descriptor for
/// the row pitch and the format flag of kernels.
struct PixelFormat {
  /// Four-character code, the first character in the lowest byte. The engine only compares it.
  std::uint32_t fourCC = 0;
  /// Bits 1 to 3 are the component-depth code (0: 8 bits, 1: 10, 2: 16, 3: 16 as half float, 4: 24,
  /// 5: 32 as float); bits 19 and 20 hold 1 for four interleaved components, and anything else for
  /// layouts that kernels cannot work on (0xA00F000C). Other bits are the host's own.
  std::uint32_t descriptor = 0;
  friend constexpr bool operator==(const PixelFormat&, const PixelFormat&) = default;
};
static_assert(sizeof(PixelFormat) == 8);

/// Four 32-bit floats a pixel in the order blue, green, red, alpha ("BGra" in memory).
inline constexpr PixelFormat kLinearFloatBGRA{0x61724742U, 0x0008013AU};

}  // namespace orvmediatypes
