#include "tools/quillon/map/ResultTags.h"

#include <algorithm>

#include "refhost/orvmediatypes/H273.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

/// Black of a display that is nowhere described.
constexpr float kMasteringMinimum = 0.0001F;

void DescribeMastering(const ColorDescription& source, float peak, ColorDescription& result) {
  const bool told = source.masteringMaxLuminance > 0.0F;
  const bool samePrimaries = source.primaries == result.primaries;
  result.masteringMaxLuminance = told ? std::min(source.masteringMaxLuminance, peak) : peak;
  result.masteringMinLuminance = told ? source.masteringMinLuminance : kMasteringMinimum;
  if (told && samePrimaries) {
    result.masteringChromaticities = source.masteringChromaticities;
  } else if (const auto primaries = RefHost::ChromaticitiesOf(ColorSpace(result))) {
    result.masteringChromaticities = *primaries;
  }
}

}  // namespace

ClipTags ResultTags(const ColorDescription& destination, double peakNits, const ClipTags& source,
                    const ContentLight& knownLight) {
  ClipTags result;
  result.colors = destination;
  result.colors.chromaLocation = source.colors.chromaLocation;
  if (destination.transfer != RefHost::kTransferPQ) return result;
  const auto peak = static_cast<float>(peakNits);
  const Mapper::Source believed = Mapper::BelieveLight({source.colors, source.light}).source;
  DescribeMastering(believed.colors, peak, result.colors);
  result.light = {std::min(knownLight.maxCLL, peak), std::min(knownLight.maxFALL, peak)};
  return result;
}

}  // namespace Quillon::Cli
