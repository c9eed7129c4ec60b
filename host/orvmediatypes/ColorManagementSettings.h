#pragma once

#include <cstdint>

// Units are nits (cd/m2) on the display. Linear light, everywhere between host and engine, is in
// units of graphics white: 1.0 is that many nits.

namespace orvmediatypes::color {

/// Luminance in nits at which graphics white is shown. The value is the number of nits, read as an
/// unsigned number; hosts may use values that have no name here.
enum class GraphicsWhiteLuminance : std::uint32_t {
  Nits100 = 100,
  Nits203 = 203,
  Nits300 = 300,
};

/// How colours are converted. The engine makes default ones, copies those of a record, hands them
/// to the host's conversions, and reads the one value below. What else is in it is the host's own:
/// a host with more to say adds members. Copies may be made on any thread, from a record that is
/// not being written: the tasks of bands hold some.
class ColorManagementSettings {
 public:
  /// Those that stand for records of a version below 3: graphics white at 203 nits (ITU-R BT.2408).
  ColorManagementSettings();
  /// For hosts: the engine has no use for it.
  explicit ColorManagementSettings(GraphicsWhiteLuminance graphicsWhite);
  /// Says the same as the other, which stays as it is.
  ColorManagementSettings(const ColorManagementSettings& other);
  /// The same; the other is fit to be destroyed or assigned to.
  ColorManagementSettings(ColorManagementSettings&& other) noexcept;
  ColorManagementSettings& operator=(const ColorManagementSettings& other);
  ~ColorManagementSettings();

  /// Nits of linear 1.0, above 0. Asked by BT.2390 and BT.2446 method A, where the destination is
  /// SDR or HDR.
  GraphicsWhiteLuminance GetGraphicsWhiteLuminance() const;

 private:
  /// The reference host's one member. Records embed it: a host that changes it builds the engine
  /// against its own header.
  GraphicsWhiteLuminance graphicsWhite_;
};

}  // namespace orvmediatypes::color
