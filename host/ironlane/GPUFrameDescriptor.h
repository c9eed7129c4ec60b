#pragma once

// One text for C++, CUDA C++ and OpenCL C 1.2: the engine fills the record, a device passes it on,
// kernels read it. Numbers lie in the byte order of the device, which is that of the processor.

#if defined(__OPENCL_VERSION__)
typedef ulong DeviceAddress;
#else

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Quillon {

/// Where something lies in the memory of a device, as the host counts it. The engine passes it on
/// and never computes with it.
using DeviceAddress = std::uint64_t;

#endif

/// The frame that a kernel works on: the first argument of every kernel, 32 bytes passed by value.
/// Where kernels take no addresses by value (OpenCL C 1.2), the device makes two arguments of it:
/// the memory object that `devicePointer` stands for, and then the 32 bytes, whose `devicePointer`
/// means nothing there.
///
/// The pixel in column x of row y begins rowPitchPixels * y + x pixels behind the first. Kernels
/// that run as more threads than there are pixels compare with width and height themselves.
typedef struct GPUFrameDescriptor {
  /// First pixel of the first row, as `KS::IGPUVideoFrameMemoryAccess` gives it.
  DeviceAddress devicePointer;
  /// Pixels of a row, and rows: those of the frame's bounds. Either may be 0.
  unsigned width;
  unsigned height;
  /// Pixels from the start of a row to that of the next: the row bytes divided by the bytes of a
  /// pixel, rounded down.
  unsigned rowPitchPixels;
  /// What a component is: 0 for half floats (component-depth code 3 of the pixel format), 1 for
  /// anything else.
  unsigned formatFlag;
  /// Always 0, and for later use.
  unsigned reserved;
  /// Always 0: it makes the record 32 bytes on every device.
  unsigned padding;
} GPUFrameDescriptor;

#if !defined(__OPENCL_VERSION__)

// The layout that kernels were compiled for.
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

#endif
