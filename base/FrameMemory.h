#pragma once

#include <cstdint>

#include "host/kestrel/FrameInterfaces.h"
#include "host/pavix/IVideoFrame.h"

namespace Quillon {

/// A frame's views of its pixels in system memory. Holds the frame for as long as it lives.
class FrameMemory {
 public:
  explicit FrameMemory(const PX::VideoFrameRef& frame);

  /// First pixel. Raises the host's null-handle exception when the frame has no memory access.
  void* Data() const { return memory_->GetData(); }

  /// Distance of two rows in bytes, by the two-dimensional view where there is one.
  std::int32_t RowBytes() const;

 private:
  orvcore::classref::InterfaceRef<KS::IVideoFrameMemoryAccess> memory_;
  orvcore::classref::InterfaceRef<KS::IVideoFrame2DPixelMemoryAccess> pixels2D_;
};

}  // namespace Quillon
