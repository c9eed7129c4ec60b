#include "refhost/orvmediatypes/PeakLuminance.h"

#include <algorithm>
#include <cmath>

#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace RefHost {

std::optional<int> MetadataPeakNits(const ColorSpace& colorSpace) {
  const ColorDescription& description = colorSpace.Description();
  if (description.peakLuminance > 0) return description.peakLuminance;
  constexpr float kMost = 1e6F;  // keeps the conversion to integers defined
  const float mastering = std::round(description.masteringMaxLuminance);
  if (!(mastering >= 1.0F)) return std::nullopt;
  return static_cast<int>(std::min(mastering, kMost));
}

int PeakNits(const ColorSpace& colorSpace) {
  if (const auto nits = MetadataPeakNits(colorSpace)) return *nits;
  switch (colorSpace.Description().transfer) {
    case kTransferPQ:
      return 10000;
    case kTransferHLG:
      return kNominalHlgNits;
    default:
      return -1;
  }
}

}  // namespace RefHost
