#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/ToneMapControls.h"
#include "refhost/orvmediatypes/H273.h"

namespace orvmediatypes::color {

ColorSpace::ColorSpace() = default;
ColorSpace::ColorSpace(const ColorDescription& description) : description_(description) {}
ColorSpace::ColorSpace(const ColorSpace& other) = default;
ColorSpace& ColorSpace::operator=(const ColorSpace& other) = default;
ColorSpace::~ColorSpace() = default;

bool ColorSpace::empty() const {
  return description_.primaries == 0 && description_.transfer == 0 && description_.matrix == 0;
}

bool ColorSpace::IsLinear() const { return description_.transfer == RefHost::kTransferLinear; }

const ColorDescription& ColorSpace::Description() const { return description_; }

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

std::int32_t ToneMapControls::GetVersion() const { return version; }

}  // namespace orvmediatypes::color
