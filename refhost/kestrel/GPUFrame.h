#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/pavix/IVideoFrame.h"
#include "refhost/ironlane/GPUDevice.h"

namespace RefHost {

/// The pixels of a frame on a GPU, valid while the frame lives: float or half BGRA.
struct GPUFrameView {
  std::shared_ptr<GPUDevice> device;
  std::uint64_t pixels = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t rowBytes = 0;
  std::uint32_t pixelBytes = 0;

  bool IsHalf() const { return pixelBytes == 8; }
  std::size_t Bytes() const { return std::size_t{rowBytes} * height; }
};

/// 0, or `kNotSupported` for frames that are not on a GPU of this host, `kInvalidFrame` for handles
/// that are not usable.
int ViewGPUFrame(const PX::VideoFrameRef& frame, GPUFrameView& view);

/// Whether the frame's pixels live on a GPU.
bool IsOnGPU(const PX::VideoFrameRef& frame);

}  // namespace RefHost
