#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

/// One pixel of a Radiance picture: mantissas with a common exponent.
struct Rgbe {
  std::uint8_t red, green, blue, exponent;

  /// What one unit of the mantissas is worth: 2^(exponent - 136); 0 where the exponent is 0.
  float Unit() const;
};

/// Reads the scanlines of a Radiance picture one after another: flat, with the run lengths of a
/// component, or with the older ones of a whole pixel.
class RadianceScanlines {
 public:
  /// The source must outlive the reader. `position` is the offset of the first scanline.
  RadianceScanlines(const StillSource& source, std::size_t position)
      : source_(source), position_(position) {}

  /// Reads as many pixels as `row` holds. Throws StillError.
  void ReadRow(std::span<Rgbe> row);

 private:
  std::uint8_t NextByte();
  bool AtComponentRuns(std::size_t width) const;
  void ReadComponentRuns(std::span<Rgbe> row);
  void ReadComponent(std::span<std::uint8_t> values);
  void ReadPixels(std::span<Rgbe> row);

  const StillSource& source_;
  std::size_t position_;
  std::vector<std::uint8_t> component_;
};

}  // namespace Quillon::Cli
