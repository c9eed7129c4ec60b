#include "tools/quillon/picture/PictureLight.h"

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

/// The same colours, with nothing said of YCbCr.
ColorSpace RgbOf(const ColorSpace& colorSpace) {
  ColorDescription description = colorSpace.Description();
  description.matrix = RefHost::kMatrixIdentity;
  description.fullRange = true;
  description.chromaLocation = 0;
  return ColorSpace(description);
}

}  // namespace

ColorSpace LinearLightIn(std::uint8_t primaries) {
  ColorDescription description;
  description.primaries = primaries;
  description.transfer = RefHost::kTransferLinear;
  return ColorSpace(description);
}

PictureLight LightOf(const PX::VideoFrameRef& frame, int white) {
  PictureLight picture;
  picture.signal = ConvertToFloat(frame, RgbOf(frame->GetColorSpace()), white);
  picture.light = ConvertToFloat(picture.signal, LinearLightIn(RefHost::kPrimariesBT2020), white);
  return picture;
}

}  // namespace Quillon::Cli
