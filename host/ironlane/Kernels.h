#pragma once

#include <cstdint>
#include <string_view>

// What a kernel of the engine is given. Kernels are the host's: it finds them by name, and may
// bring its own in place of those in `kernels/`.
//
// Arguments come in this order, each by the operation of `IL::IArgumentSet` that stands beside it:
//
//   1  the working frame                  SetFrameArgument: `Quillon::GPUFrameDescriptor`, 32 bytes
//   2  auxiliary buffer, always null      SetMemoryArgument(0, 0) on devices of platform kind 2, 3
//                                         and 4; else SetValueArgument, 8 bytes of 0
//   3  row pitch in pixels                SetValueArgument, 4 bytes, unsigned
//   4  format flag                        SetValueArgument, 4 bytes, unsigned: 0 for half floats
//   5  frame size                         SetValueArgument, 8 bytes: width in the low 32 bits,
//                                         height in the high 32 bits
//   6  the kernel's own numbers           SetValueArgument, 4 bytes each, float, in an order that
//                                         each kernel has for itself
//
// Deliberate: arguments 3 to 5 repeat what the frame says, and 2 says nothing. Kernels take them
// because their place is fixed.
//
// A kernel works on the frame in place, one pixel a thread: four interleaved components in the
// order blue, green, red, alpha, linear light with 1.0 at graphics white. Threads beyond the frame
// have no pixel. Alpha is not changed.

namespace Quillon {

/// Module that every kernel is loaded from, by `IL::LoadKernel`.
inline constexpr std::string_view kKernelModule = "ToneMapMain";

/// Bytes of the arguments 3 to 5: what `IL::Device::CreateArguments` is told beside the kernel's
/// own numbers.
inline constexpr std::uint32_t kKernelHeadBytes = 16;

}  // namespace Quillon
