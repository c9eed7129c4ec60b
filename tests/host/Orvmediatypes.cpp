#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/ToneMapControls.h"
#include "tests/host/Describe.h"
#include "tests/host/Host.h"
#include "tests/host/Inventory.h"

using scripted::Count;
using scripted::Counted;
using scripted::Host;

namespace orvmediatypes::color {

ColorSpace::ColorSpace() { Count(Counted::ColorSpace, 1); }
ColorSpace::ColorSpace(const ColorDescription& description) : description_(description) {
  Count(Counted::ColorSpace, 1);
}
ColorSpace::ColorSpace(const ColorSpace& other) : description_(other.description_) {
  Count(Counted::ColorSpace, 1);
}
ColorSpace& ColorSpace::operator=(const ColorSpace& other) = default;
ColorSpace::~ColorSpace() { Count(Counted::ColorSpace, -1); }

bool ColorSpace::empty() const {
  const bool normal =
      Host::Instance().Enter("ColorSpace::empty", scripted::Describe(*this)).IsNormal();
  return normal && description_ == ColorDescription();
}

bool ColorSpace::IsLinear() const {
  const bool normal =
      Host::Instance().Enter("ColorSpace::IsLinear", scripted::Describe(*this)).IsNormal();
  return normal && description_.transfer == 8;
}

const ColorDescription& ColorSpace::Description() const { return description_; }

ColorManagementSettings::ColorManagementSettings()
    : ColorManagementSettings(GraphicsWhiteLuminance::Nits203) {}
ColorManagementSettings::ColorManagementSettings(GraphicsWhiteLuminance graphicsWhite)
    : graphicsWhite_(graphicsWhite) {
  Count(Counted::ColorManagementSettings, 1);
}
ColorManagementSettings::ColorManagementSettings(const ColorManagementSettings& other)
    : ColorManagementSettings(other.graphicsWhite_) {}
ColorManagementSettings::ColorManagementSettings(ColorManagementSettings&& other) noexcept
    : graphicsWhite_(other.graphicsWhite_) {
  Count(Counted::ColorManagementSettings, 1);
}
ColorManagementSettings& ColorManagementSettings::operator=(const ColorManagementSettings& other) =
    default;
ColorManagementSettings::~ColorManagementSettings() { Count(Counted::ColorManagementSettings, -1); }

GraphicsWhiteLuminance ColorManagementSettings::GetGraphicsWhiteLuminance() const {
  const bool normal =
      Host::Instance()
          .Enter("ColorManagementSettings::GetGraphicsWhiteLuminance", scripted::Describe(*this))
          .IsNormal();
  return normal ? graphicsWhite_ : GraphicsWhiteLuminance{0};
}

std::int32_t ToneMapControls::GetVersion() const {
  const bool normal =
      Host::Instance().Enter("ToneMapControls::GetVersion", scripted::Describe(version)).IsNormal();
  return normal ? version : 0;
}

}  // namespace orvmediatypes::color
