#include "tools/quillon/io/FramePixels.h"

#include <string>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "tools/quillon/io/StillError.h"

namespace Quillon::Cli {

FramePixels PixelsOf(const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  return {static_cast<std::uint8_t*>(memory->GetData()), memory->GetRowBytes(), bounds.width,
          bounds.height};
}

PX::VideoFrameRef MakeFrame(const StillSource& source, orvmediatypes::PixelFormat format, int width,
                            int height, const orvmediatypes::color::ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  if (KS::CreateVideoFrame(frame, format, width, height, {}, colorSpace, false, false) < 0) {
    throw StillError(StillErrorKind::CannotRead, source.path,
                     "there is no memory for a picture of " + std::to_string(width) + "x" +
                         std::to_string(height) + " pixels",
                     "scale it down");
  }
  return frame;
}

}  // namespace Quillon::Cli
