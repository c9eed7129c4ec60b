#include "tools/quillon/MapPlan.h"

#include <array>
#include <cmath>

#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/picture/SourceTags.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

bool IsBT2390(ToneMapAlgorithmType algorithm) {
  return algorithm == ToneMapAlgorithmType::ITU2390MaxRGB ||
         algorithm == ToneMapAlgorithmType::ITU2390RGBByChannel;
}

/// The colour space that the engine works from. Scene-linear and PQ pictures are mapped in BT.2020
/// primaries whatever their container, so that one colour maps alike from every file. BT.2390 takes
/// full scale for the source's peak, which linear light has not: it gets linear pictures as PQ.
ColorSpace EngineSource(const ColorDescription& tagged, ToneMapAlgorithmType algorithm) {
  ColorDescription source;
  source.transfer = tagged.transfer;
  source.primaries = tagged.primaries;
  source.chromaticities = tagged.chromaticities;
  const bool linear = tagged.transfer == H273::kTransferLinear;
  if (linear || tagged.transfer == H273::kTransferPQ) {
    source.primaries = H273::kPrimariesBT2020;
    source.chromaticities = {};
  }
  if (linear && IsBT2390(algorithm)) source.transfer = H273::kTransferPQ;
  return ColorSpace(source);
}

ColorSpace EngineDestination(const MapOptions& options) {
  ColorDescription destination = options.destination;
  destination.peakLuminance = options.targetPeakNits.value_or(0);
  return ColorSpace(destination);
}

void RequireDestination(const ColorSpace& source, const ColorSpace& destination, int white) {
  std::array<float, 4> pixel{};
  if (CHR::ConvertFrame(pixel.data(), pixel.data(), 1, 1, source, orvmediatypes::kLinearFloatBGRA,
                        sizeof(pixel), destination, orvmediatypes::kLinearFloatBGRA, sizeof(pixel),
                        ColorManagementFor(white)) >= 0) {
    return;
  }
  throw CommandError(ExitCode::NotSupported, "no conversion to " +
                                                 DescribeColorSpace(destination.Description()) +
                                                 "; choose one of " + ColorSpaceNames());
}

/// The peak as a signal value of the source.
float EncodePeak(double nits, const ColorSpace& source, int white) {
  const auto linear = static_cast<float>(nits / white);
  std::array<float, 4> pixel = {linear, linear, linear, 1.0F};
  const int result = CHR::ConvertFrame(
      pixel.data(), pixel.data(), 1, 1, CHR::ORVColorSpaceToEquivalentLinearColorSpace(source),
      orvmediatypes::kLinearFloatBGRA, sizeof(pixel), source, orvmediatypes::kLinearFloatBGRA,
      sizeof(pixel), ColorManagementFor(white));
  if (result < 0 || !std::isfinite(pixel[0])) {
    throw CommandError(ExitCode::NotSupported, "a peak of " + std::to_string(nits) +
                                                   " nits cannot be expressed in " +
                                                   DescribeColorSpace(source.Description()));
  }
  return pixel[0];
}

ToneMapSettings ToneMapSettingsFor(const MapOptions& options, const ColorSpace& source) {
  ToneMapSettings settings;
  settings.sourceColorSpace = source;
  settings.destinationColorSpace = EngineDestination(options);
  settings.colorManagementSettings = ColorManagementFor(options.white);
  settings.controls.peakGain = options.gain.value_or(settings.controls.peakGain);
  settings.controls.colorPreservation =
      options.colorPreservation.value_or(settings.controls.colorPreservation);
  settings.knee = options.knee.value_or(settings.knee);
  settings.algorithmType = options.algorithm;
  return settings;
}

double DestinationPeakNits(const ColorSpace& destination, int white) {
  const int nits = PX::ColorSpaceUtils::GetPeakLuminance(destination);
  return nits > 0 ? nits : white;
}

/// All but the peak.
MapPlan BeginPlan(const MapOptions& options, const ColorDescription& file) {
  MapPlan plan;
  plan.white = options.white;
  plan.device = OpenChosenDevice(options.device);
  plan.taggedSource = TaggedColors(options, file);
  const ColorSpace source = EngineSource(plan.taggedSource, options.algorithm);
  RequireDestination(source, EngineDestination(options), options.white);
  plan.settings.algorithmType = options.gamut;
  plan.settings.toneMapSettings = ToneMapSettingsFor(options, source);
  plan.destinationPeakNits =
      DestinationPeakNits(plan.settings.toneMapSettings.destinationColorSpace, options.white);
  return plan;
}

}  // namespace

ColorDescription TaggedColors(const MapOptions& options, const ColorDescription& file) {
  const ColorDescription tagged = TaggedSource(file, {options.source, options.sourceTellsMatrix});
  RequireTags(options.input, tagged, "");
  return tagged;
}

bool NeedsMeasuring(const MapOptions& options, const ColorDescription& colors,
                    const ContentLight& light) {
  bool measures = false;
  ChooseSourcePeak(options, TaggedColors(options, colors), light, [&measures] {
    measures = true;
    return 0.0;
  });
  return measures;
}

MapPlan PlanMap(const MapOptions& options, const Still& still) {
  MapPlan plan = BeginPlan(options, still.frame->GetColorSpace().Description());
  still.frame->SetColorSpace(ColorSpace(plan.taggedSource));
  plan.source =
      ConvertToFloat(still.frame, plan.settings.toneMapSettings.sourceColorSpace, options.white);
  const auto measurePeak = [&] { return MeasureLightLevels(plan.source, options.white).peakNits; };
  const SourcePeak peak = ChooseSourcePeak(options, plan.taggedSource, still.light, measurePeak);
  plan.peakOrigin = peak.origin;
  return WithPeak(plan, peak.nits);
}

MapPlan PlanClip(const MapOptions& options, const ColorDescription& colors,
                 const ContentLight& light, const PeakMeasurement& measurePeak) {
  MapPlan plan = BeginPlan(options, colors);
  const SourcePeak peak = ChooseSourcePeak(options, plan.taggedSource, light, measurePeak);
  plan.peakOrigin = peak.origin;
  return WithPeak(plan, peak.nits);
}

MapPlan WithPeak(const MapPlan& plan, double nits) {
  MapPlan changed = plan;
  ToneMapSettings& settings = changed.settings.toneMapSettings;
  changed.sourcePeakNits = nits;
  settings.controls.peak = EncodePeak(nits, settings.sourceColorSpace, plan.white);
  changed.toneMapApplies = CHR::IsToneMappingApplicable(settings);
  changed.gamutApplies = CHR::IsGamutCompressionApplicable(changed.settings);
  return changed;
}
