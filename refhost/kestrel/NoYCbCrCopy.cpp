// In the place of YCbCrCopy.cpp, where there is no zimg to build it with.

#include "refhost/kestrel/YCbCrCopy.h"

namespace RefHost {

std::unique_ptr<const BandCopy> MakeYCbCrCopy(
    const FrameView& /*source*/, const orvmediatypes::color::ColorDescription& /*sourceColors*/,
    const FrameView& /*destination*/,
    const orvmediatypes::color::ColorDescription& /*destinationColors*/,
    // NOLINTNEXTLINE(performance-unnecessary-value-param): the declaration's
    std::shared_ptr<const PixelConverter> /*converter*/) {
  return nullptr;
}

}  // namespace RefHost
