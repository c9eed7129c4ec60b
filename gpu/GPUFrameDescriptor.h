#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Quillon {

/// The frame that a kernel works on: the first argument of every kernel, passed by value. Kernels
/// lay out the same 32 bytes.
struct GPUFrameDescriptor {
  std::uint64_t devicePointer = 0;   ///< first pixel, in the device's memory
  std::uint32_t width = 0;           ///< pixels
  std::uint32_t height = 0;          ///< pixels
  std::uint32_t rowPitchPixels = 0;  ///< distance of two rows in pixels
  std::uint32_t formatFlag = 0;      ///< 0 for half-float components, else 1
  std::uint32_t reserved = 0;
  std::uint32_t padding = 0;
};

static_assert(std::is_standard_layout_v<GPUFrameDescriptor>);
static_assert(std::is_trivially_copyable_v<GPUFrameDescriptor>);
static_assert(offsetof(GPUFrameDescriptor, devicePointer) == 0);
static_assert(offsetof(GPUFrameDescriptor, width) == 8);
static_assert(offsetof(GPUFrameDescriptor, height) == 12);
static_assert(offsetof(GPUFrameDescriptor, rowPitchPixels) == 16);
static_assert(offsetof(GPUFrameDescriptor, formatFlag) == 20);
static_assert(offsetof(GPUFrameDescriptor, reserved) == 24);
static_assert(sizeof(GPUFrameDescriptor) == 32);

}  // namespace Quillon
