#include "host/chromant/Conversion.h"
#include "refhost/chromant/PixelRows.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/chromant/TransferCurve.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace CHR {

namespace {

constexpr int kIgnoreLuminanceMetadata = 2;

bool SamePrimaries(const ColorSpace& first, const ColorSpace& second) {
  const auto firstPoints = RefHost::ChromaticitiesOf(first);
  const auto secondPoints = RefHost::ChromaticitiesOf(second);
  if (firstPoints.has_value() && secondPoints.has_value()) {
    return RefHost::AreSameChromaticities(*firstPoints, *secondPoints);
  }
  return firstPoints.has_value() == secondPoints.has_value() &&
         first.Description().primaries == second.Description().primaries;
}

bool SameTransfer(const ColorDescription& first, const ColorDescription& second) {
  if (first.transfer == second.transfer) return true;
  const auto canonical = RefHost::CanonicalTransfer(first.transfer);
  return canonical != 0 && canonical == RefHost::CanonicalTransfer(second.transfer);
}

/// What only matters to pixels that are stored as luma and chroma.
bool SameYCbCr(const ColorDescription& first, const ColorDescription& second) {
  return first.matrix == second.matrix && first.fullRange == second.fullRange &&
         first.chromaLocation == second.chromaLocation;
}

bool SameLuminance(const ColorDescription& first, const ColorDescription& second) {
  return first.peakLuminance == second.peakLuminance &&
         first.masteringChromaticities == second.masteringChromaticities &&
         first.masteringMaxLuminance == second.masteringMaxLuminance &&
         first.masteringMinLuminance == second.masteringMinLuminance;
}

}  // namespace

bool AreColorSpacesEquivalent(const ColorSpace& first, PixelFormat firstFormat,
                              const ColorSpace& second, PixelFormat secondFormat, int matchFlag) {
  const ColorDescription& one = first.Description();
  const ColorDescription& other = second.Description();
  const bool bothRgb = RefHost::IsInterleavedFourComponent(firstFormat) &&
                       RefHost::IsInterleavedFourComponent(secondFormat);
  return SamePrimaries(first, second) && SameTransfer(one, other) &&
         (bothRgb || SameYCbCr(one, other)) &&
         (matchFlag == kIgnoreLuminanceMetadata || SameLuminance(one, other));
}

}  // namespace CHR
