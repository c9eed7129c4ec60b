#pragma once

#include <cstdint>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"

/// A colour space by H.273 code points, full-range RGB; a peak of 0 gives no metadata.
inline orvmediatypes::color::ColorSpace Space(int primaries, int transfer,
                                              std::int32_t peakLuminance = 0) {
  orvmediatypes::color::ColorDescription description;
  description.primaries = static_cast<std::uint8_t>(primaries);
  description.transfer = static_cast<std::uint8_t>(transfer);
  description.peakLuminance = peakLuminance;
  return orvmediatypes::color::ColorSpace(description);
}

/// The same with one more field set.
template <class Value>
orvmediatypes::color::ColorSpace With(const orvmediatypes::color::ColorSpace& colorSpace,
                                      Value orvmediatypes::color::ColorDescription::*field,
                                      const Value& value) {
  auto description = colorSpace.Description();
  description.*field = value;
  return orvmediatypes::color::ColorSpace(description);
}

/// Colour-management settings with graphics white at this luminance.
inline orvmediatypes::color::ColorManagementSettings White(std::uint32_t nits) {
  return orvmediatypes::color::ColorManagementSettings(
      static_cast<orvmediatypes::color::GraphicsWhiteLuminance>(nits));
}
