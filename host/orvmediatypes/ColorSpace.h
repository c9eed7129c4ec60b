#pragma once

#include <cstdint>

namespace orvmediatypes::color {

// A colour space says what the numbers of a pixel mean. It is the host's: the engine never computes
// with what is in it, and asks host/chromant/ and host/pavix/ wherever it matters. The description
// is how programs of the reference host say what they mean; a host that knows colour spaces by
// other marks (an ICC profile, a number of its own) has other members here.

/// A point of the CIE 1931 xy diagram, 0 to 1 each.
struct Chromaticity {
  double x = 0.0;
  double y = 0.0;
  friend bool operator==(const Chromaticity&, const Chromaticity&) = default;
};

/// Three primaries and the white point. All 0: not known.
struct Chromaticities {
  Chromaticity red, green, blue, white;
  friend bool operator==(const Chromaticities&, const Chromaticities&) = default;
};

/// What a host knows of a colour space. Code points are those of ITU-T H.273; a code point of 0
/// says nothing, and a description whose code points are all 0 is empty. Between hosts and their
/// programs: the engine reads nothing of it.
struct ColorDescription {
  /// Table 2: 1 BT.709, 9 BT.2020, 12 P3-D65.
  std::uint8_t primaries = 0;
  /// Table 3: 8 linear, 13 sRGB, 16 PQ, 18 HLG.
  std::uint8_t transfer = 0;
  /// Table 4: 0 RGB, though 0 says nothing else.
  std::uint8_t matrix = 0;
  /// Codes of integer formats use their whole range.
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
  /// The brightest and the darkest that it shows.
  float masteringMaxLuminance = 0.0F;
  float masteringMinLuminance = 0.0F;
  friend bool operator==(const ColorDescription&, const ColorDescription&) = default;
};

/// Colour space of a frame. The engine copies it, asks the two questions below, and otherwise only
/// hands it to the host. Copies may be made on any thread, from one that is not being written; the
/// tasks of bands hold copies too.
class ColorSpace {
 public:
  /// Empty.
  ColorSpace();
  /// For hosts and their programs.
  explicit ColorSpace(const ColorDescription& description);
  /// Says the same as the other, which stays as it is.
  ColorSpace(const ColorSpace& other);
  ColorSpace& operator=(const ColorSpace& other);
  ~ColorSpace();

  /// Says nothing at all, as one that was made of nothing. Asked of a record's source: it has no
  /// peak then.
  bool empty() const;
  /// Its transfer is linear (H.273 transfer 8). Asked of a source on a GPU: it is worked on in
  /// place then.
  bool IsLinear() const;

  /// What it was made of; it lives as long as the colour space.
  const ColorDescription& Description() const;

 private:
  /// Records embed it: a host that has other members builds the engine against its own header.
  ColorDescription description_;
};

}  // namespace orvmediatypes::color
