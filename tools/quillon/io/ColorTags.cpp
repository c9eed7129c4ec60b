#include "tools/quillon/io/ColorTags.h"

#include <cmath>

#include "refhost/orvmediatypes/H273.h"

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr double kTolerance = 1e-4;

bool IsNear(const Chromaticity& a, const Chromaticity& b) {
  return std::abs(a.x - b.x) <= kTolerance && std::abs(a.y - b.y) <= kTolerance;
}

bool IsNear(const Chromaticities& a, const Chromaticities& b) {
  return IsNear(a.red, b.red) && IsNear(a.green, b.green) && IsNear(a.blue, b.blue) &&
         IsNear(a.white, b.white);
}

}  // namespace

bool SetPrimaries(ColorDescription& description, const Chromaticities& chromaticities) {
  ColorDescription candidate;
  for (int codePoint = 1; codePoint < 256; ++codePoint) {
    if (codePoint == RefHost::kUnspecifiedCodePoint) continue;
    candidate.primaries = static_cast<std::uint8_t>(codePoint);
    const auto known = RefHost::ChromaticitiesOf(ColorSpace(candidate));
    if (known && IsNear(*known, chromaticities)) {
      description.primaries = candidate.primaries;
      return true;
    }
  }
  candidate.primaries = RefHost::kUnspecifiedCodePoint;
  candidate.chromaticities = chromaticities;
  const bool valid = RefHost::ChromaticitiesOf(ColorSpace(candidate)).has_value();
  description.primaries = valid ? RefHost::kUnspecifiedCodePoint : 0;
  if (valid) description.chromaticities = chromaticities;
  return valid;
}

ColorDescription RgbDescription(std::uint8_t primaries, std::uint8_t transfer) {
  ColorDescription description;
  description.primaries = primaries;
  description.transfer = transfer;
  return description;
}

}  // namespace Quillon::Cli
