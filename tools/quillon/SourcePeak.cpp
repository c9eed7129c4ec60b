#include "tools/quillon/SourcePeak.h"

#include <optional>

#include "host/pavix/ColorSpaceUtils.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

std::optional<SourcePeak> PeakOfMetadata(const ContentLight& light,
                                         const ColorDescription& tagged) {
  if (light.maxCLL > 0) return SourcePeak{light.maxCLL, "MaxCLL of the file"};
  if (tagged.masteringMaxLuminance > 0.0F) {
    return SourcePeak{tagged.masteringMaxLuminance, "mastering display of the file"};
  }
  return std::nullopt;
}

/// What the transfer function stands for where nothing else is known.
std::optional<SourcePeak> NominalPeak(const ColorDescription& tagged, int white) {
  const ColorSpace colorSpace(tagged);
  if (PX::ColorSpaceUtils::IsSDRColorSpace(colorSpace)) {
    return SourcePeak{static_cast<double>(white), "white of an SDR signal"};
  }
  const int nits = PX::ColorSpaceUtils::GetPeakLuminance(colorSpace);
  if (nits > 0) return SourcePeak{static_cast<double>(nits), "nominal peak of the transfer"};
  return std::nullopt;
}

}  // namespace

SourcePeak ChooseSourcePeak(const MapOptions& options, const ColorDescription& tagged,
                            const ContentLight& light, const PeakMeasurement& measurePeak) {
  switch (options.peakSource) {
    case PeakSource::Number:
      return {options.peakNits, "given"};
    case PeakSource::Measure:
    case PeakSource::Scenes:
      return SourcePeak{measurePeak(), "measured"};
    case PeakSource::Metadata:
    case PeakSource::Default:
      break;
  }
  if (const auto peak = PeakOfMetadata(light, tagged)) return *peak;
  if (const auto peak = NominalPeak(tagged, options.white)) return *peak;
  if (options.peakSource == PeakSource::Metadata) {
    throw CommandError(ExitCode::Usage, options.input.string() +
                                            " carries no light-level metadata; use --peak "
                                            "measure, or --peak with a number of nits");
  }
  return SourcePeak{measurePeak(), "measured"};
}
