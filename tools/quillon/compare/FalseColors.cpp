#include "tools/quillon/compare/FalseColors.h"

#include <cmath>

#include "tools/quillon/compare/PixelMarks.h"

namespace Quillon::Cli {

FalseColor DeltaEColor(float deltaE) {
  if (std::isnan(deltaE)) return kNotFiniteColor;
  FalseColor color = kDeltaEBands.front().color;
  for (const DeltaEBand& band : kDeltaEBands) {
    if (deltaE >= band.from) color = band.color;
  }
  return color;
}

FalseColor MarkColor(unsigned marks, const FalseColor& unmarked) {
  const bool clipped = (marks & kClipped) != 0;
  const bool outOfGamut = (marks & kOutOfGamut) != 0;
  if ((marks & kNotFinite) != 0) return kNotFiniteColor;
  if (clipped && outOfGamut) return kBothColor;
  if (clipped) return kClippedColor;
  return outOfGamut ? kOutOfGamutColor : unmarked;
}

}  // namespace Quillon::Cli
