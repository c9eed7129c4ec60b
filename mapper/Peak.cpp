#include <sstream>

#include "host/pavix/ColorSpaceUtils.h"
#include "mapper/Mapping.h"

namespace Quillon::Mapper {

namespace {

/// No display that HDR is mastered on is darker.
constexpr float kLeastMasteringNits = 50.0F;

std::string TextOf(float nits) {
  std::ostringstream text;
  text << nits;
  return text.str();
}

/// Why a level cannot be; empty: it can.
std::string DoubtOf(float nits, float least, float maxFALL) {
  if (nits < least) return " nits (less than " + TextOf(least) + ")";
  if (nits < maxFALL) return " nits (less than MaxFALL, " + TextOf(maxFALL) + ")";
  return {};
}

}  // namespace

BelievedSource BelieveLight(const Source& source) {
  BelievedSource believed{source, {}};
  const auto believe = [&](float& nits, const char* name, float least) {
    const std::string doubt = DoubtOf(nits, least, source.light.maxFALL);
    if (!(nits > 0.0F) || doubt.empty()) return;
    believed.ignored.push_back(name + TextOf(nits) + doubt);
    nits = 0.0F;
  };
  believe(believed.source.light.maxCLL, "a MaxCLL of ", 0.0F);
  believe(believed.source.colors.masteringMaxLuminance, "a mastering display of ",
          kLeastMasteringNits);
  return believed;
}

std::optional<SourcePeak> MetadataPeak(const Source& asTold) {
  const Source source = BelieveLight(asTold).source;
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
