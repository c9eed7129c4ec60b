#include "base/FrameMemory.h"

namespace Quillon {

using orvcore::classref::InterfaceCast;

FrameMemory::FrameMemory(const PX::VideoFrameRef& frame)
    : memory_(InterfaceCast<KS::IVideoFrameMemoryAccess>(frame)),
      pixels2D_(InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame)) {}

std::int32_t FrameMemory::RowBytes() const {
  return pixels2D_.IsUsable() ? pixels2D_->GetRowBytes() : memory_->GetRowBytes();
}

}  // namespace Quillon
