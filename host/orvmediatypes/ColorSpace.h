#pragma once

#include <cstdint>

namespace orvmediatypes::color {

/// A point of the CIE 1931 xy diagram.
struct Chromaticity {
  double x = 0.0;
  double y = 0.0;
  friend bool operator==(const Chromaticity&, const Chromaticity&) = default;
};

/// Three primaries and the white point.
struct Chromaticities {
  Chromaticity red, green, blue, white;
  friend bool operator==(const Chromaticities&, const Chromaticities&) = default;
};

/// What a host knows of a colour space. Code points are those of ITU-T H.273; a code point of 0
/// says nothing, and a description whose code points are all 0 is empty.
struct ColorDescription {
  std::uint8_t primaries = 0;
  std::uint8_t transfer = 0;
  std::uint8_t matrix = 0;
  bool fullRange = true;
  /// Chroma sample location of 4:2:0 pictures, H.273 type 0 (left) to 5.
  std::uint8_t chromaLocation = 0;
  /// The primaries where `primaries` is 2 (unspecified), as in files that give coordinates.
  Chromaticities chromaticities;
  /// Peak luminance of the content or of the display it is made for, whole nits; 0: not known.
  /// For HLG it is the display's nominal peak and shapes the OOTF.
  std::int32_t peakLuminance = 0;
  /// Mastering display (SMPTE ST 2086), nits; a maximum of 0: not known.
  Chromaticities masteringChromaticities;
  float masteringMaxLuminance = 0.0F;
  float masteringMinLuminance = 0.0F;
  friend bool operator==(const ColorDescription&, const ColorDescription&) = default;
};

/// Colour space of a frame. The engine copies it, asks the two questions below, and otherwise
/// only hands it to the host.
class ColorSpace {
 public:
  ColorSpace();
  explicit ColorSpace(const ColorDescription& description);
  ColorSpace(const ColorSpace& other);
  ColorSpace& operator=(const ColorSpace& other);
  ~ColorSpace();

  /// Says nothing at all.
  bool empty() const;
  /// Its transfer is linear (H.273 transfer 8).
  bool IsLinear() const;

  const ColorDescription& Description() const;

 private:
  ColorDescription description_;
};

}  // namespace orvmediatypes::color
