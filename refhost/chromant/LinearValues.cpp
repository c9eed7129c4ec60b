#include <array>

#include "host/chromant/Conversion.h"
#include "refhost/chromant/PixelConverter.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace CHR {

ColorSpace ORVColorSpaceToEquivalentLinearColorSpace(const ColorSpace& colorSpace) {
  // A space that says nothing is not made to say that its unknown pixels are linear.
  if (colorSpace.empty()) return colorSpace;
  auto description = colorSpace.Description();
  description.transfer = RefHost::kTransferLinear;
  return ColorSpace(description);
}

float ConvertSignalToLinearValue(const ColorSpace& colorSpace,
                                 const ColorManagementSettings& settings, float signal) {
  const auto converter = RefHost::MakePixelConverter(
      colorSpace, ORVColorSpaceToEquivalentLinearColorSpace(colorSpace), settings);
  if (converter == nullptr) return signal;
  std::array<float, 4> pixel = {signal, signal, signal, 1.0F};
  converter->Convert(pixel.data(), pixel.data(), 1);
  return pixel[0];
}

}  // namespace CHR
