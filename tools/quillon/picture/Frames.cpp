#include "tools/quillon/picture/Frames.h"

#include "host/kestrel/FrameInterfaces.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorSpace;

PX::VideoFrameRef MakeFloatFrame(int width, int height, const ColorSpace& colorSpace) {
  return ValueOf(Mapper::MakeFloatFrame(width, height, colorSpace));
}

PX::VideoFrameRef ConvertToFloat(const PX::VideoFrameRef& frame, const ColorSpace& colorSpace,
                                 int white) {
  return ValueOf(Mapper::ConvertToFloat(frame, colorSpace, white));
}

void CopyConverted(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to, int white) {
  if (const auto failure = Mapper::CopyConverted(from, to, white)) FailMapping(*failure);
}

FloatPixels ViewFloatPixels(const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  return {static_cast<float*>(memory->GetData()), bounds.width, bounds.height,
          memory->GetRowBytes() / static_cast<std::ptrdiff_t>(sizeof(float))};
}

}  // namespace Quillon::Cli
