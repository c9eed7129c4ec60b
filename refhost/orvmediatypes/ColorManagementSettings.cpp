#include "host/orvmediatypes/ColorManagementSettings.h"

namespace orvmediatypes::color {

ColorManagementSettings::ColorManagementSettings()
    : ColorManagementSettings(GraphicsWhiteLuminance::Nits203) {}
ColorManagementSettings::ColorManagementSettings(GraphicsWhiteLuminance graphicsWhite)
    : graphicsWhite_(graphicsWhite) {}
ColorManagementSettings::ColorManagementSettings(const ColorManagementSettings& other) = default;
ColorManagementSettings::ColorManagementSettings(ColorManagementSettings&& other) noexcept =
    default;
ColorManagementSettings& ColorManagementSettings::operator=(const ColorManagementSettings& other) =
    default;
ColorManagementSettings::~ColorManagementSettings() = default;

GraphicsWhiteLuminance ColorManagementSettings::GetGraphicsWhiteLuminance() const {
  return graphicsWhite_;
}

}  // namespace orvmediatypes::color
