#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "refhost/ironlane/GPUDevice.h"

/// Runs a kernel of "ToneMapMain" on a frame in place, with blocks of this size, as the engine
/// does. 0 or a negative code.
int RunToneMapKernel(const std::shared_ptr<RefHost::GPUDevice>& device, const std::string& kernel,
                     const PX::VideoFrameRef& frame, const std::vector<float>& floats,
                     std::uint32_t blockX, std::uint32_t blockY);

/// The same on the leading columns of the frame alone.
int RunToneMapKernelOnPart(const std::shared_ptr<RefHost::GPUDevice>& device,
                           const std::string& kernel, const PX::VideoFrameRef& frame,
                           std::uint32_t columns, const std::vector<float>& floats);
