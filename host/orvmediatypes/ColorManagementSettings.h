#pragma once

#include <cstdint>

namespace orvmediatypes::color {

/// Luminance in nits at which graphics white is shown. The value is the number of nits; hosts may
/// use values that have no name here.
enum class GraphicsWhiteLuminance : std::uint32_t {
  Nits100 = 100,
  Nits203 = 203,
  Nits300 = 300,
};

/// How colours are converted. Default-constructed: graphics white at 203 nits (ITU-R BT.2408).
class ColorManagementSettings {
 public:
  ColorManagementSettings();
  explicit ColorManagementSettings(GraphicsWhiteLuminance graphicsWhite);
  ColorManagementSettings(const ColorManagementSettings& other);
  ColorManagementSettings(ColorManagementSettings&& other) noexcept;
  ColorManagementSettings& operator=(const ColorManagementSettings& other);
  ~ColorManagementSettings();

  GraphicsWhiteLuminance GetGraphicsWhiteLuminance() const;

 private:
  GraphicsWhiteLuminance graphicsWhite_;
};

}  // namespace orvmediatypes::color
