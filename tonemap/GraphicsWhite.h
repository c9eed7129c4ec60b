#pragma once

#include <cstdint>

#include "host/orvmediatypes/ColorManagementSettings.h"

namespace Quillon {

/// Luminance of graphics white in nits.
inline float GraphicsWhiteNits(
    const orvmediatypes::color::ColorManagementSettings& colorManagement) {
  return static_cast<float>(
      static_cast<std::uint32_t>(colorManagement.GetGraphicsWhiteLuminance()));
}

}  // namespace Quillon
