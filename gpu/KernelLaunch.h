#pragma once

#include <cstdint>

#include "gpu/KernelArguments.h"
#include "host/ironlane/Device.h"

namespace Quillon {

/// Threads of a block, and blocks of the grid that covers a frame.
struct LaunchGeometry {
  std::uint32_t blockX = 1;
  std::uint32_t blockY = 1;
  std::uint32_t gridX = 0;
  std::uint32_t gridY = 0;
};

/// Geometry for a frame of the given size on a device. Where the size is no multiple of the block,
/// the grid reaches beyond the frame.
LaunchGeometry ChooseLaunchGeometry(const IL::DeviceDescription& device, std::uint32_t width,
                                    std::uint32_t height);

/// Hands the arguments to the device one by one and launches the kernel. Returns what the launch
/// returned, or the first negative code before it; nothing is launched then.
int LaunchKernel(IL::Device& device, std::int32_t platformKind, IL::KernelHandle kernel,
                 const LaunchGeometry& geometry, const KernelArguments& arguments);

}  // namespace Quillon
