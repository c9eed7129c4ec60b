#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/kestrel/CreateFrames.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

namespace RefHost {

namespace {

/// The code of chroma without colour, as it is stored.
std::uint16_t NeutralChroma(const FormatInfo& info) {
  const bool highBits = info.layout == FrameLayout::SemiPlanarYCbCr && info.bits > 8;
  return static_cast<std::uint16_t>(1U << ((highBits ? 16 : info.bits) - 1));
}

/// Every sample 0, chroma neutral.
void Clear(const PX::VideoFrameRef& frame, const FormatInfo& info) {
  const auto access = orvcore::classref::InterfaceCast<IVideoFramePlaneAccess>(frame);
  const std::uint16_t neutral = NeutralChroma(info);
  for (int i = 0; i < info.planeCount; ++i) {
    const Plane plane = access->GetPlane(i);
    auto* bytes = static_cast<std::byte*>(plane.data);
    const std::size_t size = static_cast<std::size_t>(plane.rowBytes) *  //
                             static_cast<std::size_t>(plane.height);
    if (i == 0) {
      std::memset(bytes, 0, size);
    } else if (info.bytesPerSample == 1) {
      std::memset(bytes, neutral, size);
    } else {
      for (std::size_t at = 0; at + 1 < size; at += 2) std::memcpy(bytes + at, &neutral, 2);
    }
  }
}

}  // namespace

}  // namespace RefHost

namespace KS {

int CreateVideoFrame(PX::VideoFrameRef& frame, orvmediatypes::PixelFormat format, int width,
                     int height, orvmediatypes::PixelAspectRatio aspect,
                     const orvmediatypes::color::ColorSpace& colorSpace, bool clear,
                     bool /*shared*/) {
  const int result = RefHost::CreateSystemFrame(frame, {.format = format,
                                                        .width = width,
                                                        .height = height,
                                                        .aspect = aspect,
                                                        .colorSpace = colorSpace});
  const auto info = RefHost::DescribeFormat(format);
  if (result == 0 && clear && info.has_value()) RefHost::Clear(frame, *info);
  return result;
}

}  // namespace KS
