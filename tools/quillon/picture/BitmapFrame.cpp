#include "tools/quillon/picture/BitmapFrame.h"

#include <cstring>
#include <string>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace {

PX::VideoFrameRef MakeByteFrame(int width, int height) {
  PX::VideoFrameRef frame;
  const orvmediatypes::color::ColorSpace srgb(ColorSpaceOfName("srgb"));
  if (KS::CreateVideoFrame(frame, RefHost::kBgra8, width, height, {}, srgb, false, false) < 0) {
    throw CommandError(ExitCode::NotSupported, "no picture of " + std::to_string(width) + "x" +
                                                   std::to_string(height) + " can be made");
  }
  return frame;
}

}  // namespace

PX::VideoFrameRef FrameOfBitmap(const Bitmap& bitmap) {
  PX::VideoFrameRef frame = MakeByteFrame(bitmap.width, bitmap.height);
  const FramePixels pixels = PixelsOf(frame);
  const std::size_t rowBytes = std::size_t{4} * bitmap.width;
  for (int y = 0; y < bitmap.height; ++y) {
    std::memcpy(pixels.Row<std::uint8_t>(y), bitmap.bgra.data() + y * rowBytes, rowBytes);
  }
  return frame;
}

Bitmap BitmapOfFrame(const PX::VideoFrameRef& frame) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  const PX::VideoFrameRef bytes = MakeByteFrame(bounds.width, bounds.height);
  constexpr orvmediatypes::RenderQuality kQuality = 4;
  if (KS::VideoFrameManipulators::CopyFrame(frame, bytes, kQuality, {}) < 0) {
    throw CommandError(ExitCode::NotSupported, "a view cannot be rounded to 8 bits");
  }
  const FramePixels pixels = PixelsOf(bytes);
  Bitmap bitmap{bounds.width, bounds.height, {}};
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{4} * bitmap.width;
  bitmap.bgra.reserve(rowBytes * bitmap.height);
  for (int y = 0; y < bitmap.height; ++y) {
    const auto* row = pixels.Row<std::uint8_t>(y);
    bitmap.bgra.insert(bitmap.bgra.end(), row, row + rowBytes);
  }
  return bitmap;
}

}  // namespace Quillon::Cli
