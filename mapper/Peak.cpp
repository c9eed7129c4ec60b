#include "host/pavix/ColorSpaceUtils.h"
#include "mapper/Mapping.h"

namespace Quillon::Mapper {

std::optional<SourcePeak> MetadataPeak(const Source& source) {
  if (source.light.maxCLL > 0) return SourcePeak{source.light.maxCLL, "MaxCLL of the file"};
  if (source.colors.masteringMaxLuminance > 0.0F) {
    return SourcePeak{source.colors.masteringMaxLuminance, "mastering display of the file"};
  }
  return std::nullopt;
}

std::optional<SourcePeak> NominalPeak(const ColorDescription& colors, int white) {
  const orvmediatypes::color::ColorSpace colorSpace(colors);
  if (PX::ColorSpaceUtils::IsSDRColorSpace(colorSpace)) {
    return SourcePeak{static_cast<double>(white), "white of an SDR signal"};
  }
  const int nits = PX::ColorSpaceUtils::GetPeakLuminance(colorSpace);
  if (nits > 0) return SourcePeak{static_cast<double>(nits), "nominal peak of the transfer"};
  return std::nullopt;
}

}  // namespace Quillon::Mapper
