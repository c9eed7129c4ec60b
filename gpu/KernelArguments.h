#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "base/KernelSignature.h"
#include "base/SupportVector.h"
#include "host/ironlane/GPUFrameDescriptor.h"
#include "host/orvmediatypes/PixelFormat.h"
#include "host/orvmediatypes/ToneMapControls.h"

namespace Quillon {

/// Argument block of a kernel: what every kernel is told of the frame, then its own floats.
struct KernelArguments {
  GPUFrameDescriptor frame{};
  std::uint64_t auxiliaryBuffer = 0;  ///< always null
  std::uint32_t rowPitchPixels = 0;
  /// Kernels get its format flag.
  alignas(8) orvmediatypes::PixelFormat pixelFormat;
  std::uint64_t frameSize = 0;  ///< width in the low, height in the high 32 bits
  std::array<float, kMaxKernelFloats> floats{};
  std::uint32_t floatCount = 0;

  /// Bytes of all arguments but the frame and the auxiliary buffer: row pitch, format flag, frame
  /// size and floats.
  std::uint32_t ByValueBytes() const { return kKernelHeadBytes + 4 * floatCount; }
};

static_assert(std::is_standard_layout_v<KernelArguments>);
static_assert(offsetof(KernelArguments, frame) == 0);
static_assert(offsetof(KernelArguments, auxiliaryBuffer) == 32);
static_assert(offsetof(KernelArguments, rowPitchPixels) == 40);
static_assert(offsetof(KernelArguments, pixelFormat) == 48);
static_assert(offsetof(KernelArguments, frameSize) == 56);
static_assert(offsetof(KernelArguments, floats) == 64);

/// Sets the floats in the kernel's order. 0, or 0xA00F000F and no change when the support vector
/// is too short for the kernel.
int SetKernelFloats(const KernelSignature& kernel, const SupportVector& params,
                    const orvmediatypes::color::ToneMapControls& controls,
                    KernelArguments& arguments);

}  // namespace Quillon
