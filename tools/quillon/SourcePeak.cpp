#include "tools/quillon/SourcePeak.h"

#include <optional>

#include "host/PX/ColorSpaceUtils.h"
#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/LightLevels.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

std::optional<SourcePeak> PeakOfMetadata(const Still& still, const ColorDescription& tagged) {
  if (still.light.maxCLL > 0) return SourcePeak{still.light.maxCLL, "MaxCLL of the file"};
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

SourcePeak MeasuredPeak(const PX::VideoFrameRef& frame, int white) {
  return {MeasureLightLevels(frame, white).peakNits, "measured"};
}

}  // namespace

SourcePeak ChooseSourcePeak(const MapOptions& options, const Still& still,
                            const ColorDescription& tagged, const PX::VideoFrameRef& frame) {
  switch (options.peakSource) {
    case PeakSource::Number:
      return {options.peakNits, "given"};
    case PeakSource::Measure:
      return MeasuredPeak(frame, options.white);
    case PeakSource::Metadata:
    case PeakSource::Default:
      break;
  }
  if (const auto peak = PeakOfMetadata(still, tagged)) return *peak;
  if (const auto peak = NominalPeak(tagged, options.white)) return *peak;
  if (options.peakSource == PeakSource::Metadata) {
    throw CommandError(ExitCode::Usage, options.input.string() +
                                            " carries no light-level metadata; use --peak "
                                            "measure, or --peak with a number of nits");
  }
  return MeasuredPeak(frame, options.white);
}
