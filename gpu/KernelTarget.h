#pragma once

#include <memory>

#include "base/KernelSignature.h"
#include "base/SupportVector.h"
#include "gpu/KernelArguments.h"
#include "gpu/KernelLaunch.h"
#include "host/ironlane/Device.h"
#include "host/pavix/IVideoFrame.h"

namespace Quillon {

/// The device that a GPU frame lives on. Raises the host's null-handle exception when the frame is
/// on none.
std::shared_ptr<IL::Device> DeviceOf(const PX::VideoFrameRef& frame);

/// A frame that kernels work on in place, and the device that runs them.
struct KernelTarget {
  std::shared_ptr<IL::Device> device;
  IL::DeviceDescription description;
  LaunchGeometry geometry;
  /// What every kernel is told of the frame; no floats yet.
  KernelArguments head;
};

/// Reads the frame and the device. 0, or 0xA00F000C for a pixel format that kernels cannot work
/// on. A frame without GPU memory or rows raises the host's null-handle exception.
int MakeKernelTarget(const PX::VideoFrameRef& frame, std::shared_ptr<IL::Device> device,
                     KernelTarget& target);

/// A kernel that can be launched, and its arguments.
struct PreparedKernel {
  IL::KernelHandle kernel = nullptr;
  KernelArguments arguments;
};

/// 0; 0xA00F000F when the support vector is too short for the kernel, which is then not loaded; or
/// 0xA00F0001 when there is no such kernel.
int PrepareKernel(const KernelTarget& target, const KernelSignature& kernel,
                  const SupportVector& params,
                  const orvmediatypes::color::ToneMapControls& controls, PreparedKernel& prepared);

/// Runs the kernel over the target's frame; see `LaunchKernel`.
int RunKernel(const KernelTarget& target, const PreparedKernel& prepared);

}  // namespace Quillon
