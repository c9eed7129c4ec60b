#include "mapper/Plan.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/DefaultFloatingPoint.h"
#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "mapper/Content.h"
#include "mapper/Frames.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorSpace;
using PX::ToneMappingUtils::ToneMapSettings;

namespace Quillon::Mapper {

namespace {

/// BT.2446 takes its luminances as shares of PQ's.
constexpr double kMostBt2446ANits = 10000.0;

bool IsBt2390(Algorithm algorithm) {
  return algorithm == Algorithm::ITU2390MaxRGB || algorithm == Algorithm::ITU2390RGBByChannel;
}

/// Skies keep their colour with it and flames still go to white (docs/decisions/quality.md).
constexpr float kColorPreservation = 0.95F;

/// Whether the curve scales a pixel as a whole, so that it may have channels below 0.
bool KeepsRatios(Algorithm algorithm) {
  return algorithm == Algorithm::Automatic || algorithm == Algorithm::HuePreservationDesaturation ||
         algorithm == Algorithm::CARToneCurve;
}

/// Whether the engine works in the primaries of the target: colours that it has then keep their hue
/// on their way to white. The engine's gamut compression wants the primaries of the source.
bool WorksInTarget(const ColorDescription& source, const Target& target, const Settings& settings) {
  return PX::ColorSpaceUtils::IsSDRColorSpace(ColorSpace(target.colors)) &&
         PX::ColorSpaceUtils::IsHDRColorSpace(ColorSpace(source)) &&
         settings.gamut == GamutAlgorithm::None && KeepsRatios(settings.algorithm);
}

/// Whether pictures may hold colours that the destination has not. HDR pictures may, whatever their
/// primaries, where there are colours beyond the destination's: one colour maps alike from every
/// container.
bool MayLackColors(const ColorDescription& source, const ColorSpace& destination) {
  ColorDescription widest = source;
  if (PX::ColorSpaceUtils::IsHDRColorSpace(ColorSpace(source))) {
    widest.primaries = RefHost::kPrimariesBT2020;
    widest.chromaticities = {};
  }
  return ReachesBeyond(ColorSpace(widest), destination) ||
         ReachesBeyond(ColorSpace(source), destination);
}

/// Linear light in the same primaries.
ColorSpace LinearLight(const ColorDescription& colors) {
  ColorDescription linear;
  linear.transfer = RefHost::kTransferLinear;
  linear.primaries = colors.primaries;
  linear.chromaticities = colors.chromaticities;
  return ColorSpace(linear);
}

ColorSpace DestinationSpace(const Target& target) {
  ColorDescription destination = target.colors;
  destination.peakLuminance = target.peakNits.value_or(0);
  return ColorSpace(destination);
}

/// A grey pixel of a float picture in another colour space; nothing where there is no conversion.
std::optional<float> ConvertGrey(float value, const ColorSpace& from, const ColorSpace& to,
                                 int white) {
  std::array<float, 4> pixel = {value, value, value, 1.0F};
  const int result = CHR::ConvertFrame(
      pixel.data(), pixel.data(), 1, 1, from, orvmediatypes::kLinearFloatBGRA, sizeof(pixel), to,
      orvmediatypes::kLinearFloatBGRA, sizeof(pixel), ColorManagementFor(white));
  return result < 0 ? std::nullopt : std::optional(pixel[0]);
}

ToneMapSettings ToneMapSettingsFor(const Settings& asked, const ColorSpace& source,
                                   const ColorSpace& destination) {
  ToneMapSettings settings;
  settings.sourceColorSpace = source;
  settings.destinationColorSpace = destination;
  settings.colorManagementSettings = ColorManagementFor(asked.white);
  settings.controls.peakGain = asked.gain.value_or(settings.controls.peakGain);
  settings.controls.colorPreservation = asked.colorPreservation.value_or(kColorPreservation);
  settings.knee = asked.knee.value_or(settings.knee);
  settings.algorithmType = asked.algorithm;
  return settings;
}

double DestinationPeakNits(const ColorSpace& destination, int white) {
  const int nits = PX::ColorSpaceUtils::GetPeakLuminance(destination);
  return nits > 0 ? nits : white;
}

/// Puts the peak in; nothing, or why it cannot be.
Failure SetPeak(Plan::Content& content, const SourcePeak& peak) {
  ToneMapSettings& settings = content.settings.toneMapSettings;
  const ColorSpace& source = settings.sourceColorSpace;
  const int white = content.asked.white;
  content.curvePeakNits = content.asked.algorithm == Algorithm::ITU2446A
                              ? std::min(peak.nits, kMostBt2446ANits)
                              : peak.nits;
  const auto signal =
      ConvertGrey(static_cast<float>(content.curvePeakNits / white),
                  CHR::ORVColorSpaceToEquivalentLinearColorSpace(source), source, white);
  if (!signal || !std::isfinite(*signal)) {
    return Error{Code::NotSupported,
                 "a peak of " + std::to_string(peak.nits) + " nits cannot be expressed in " +
                     DescribeColorSpace(source.Description()),
                 {}};
  }
  content.peak = peak;
  settings.controls.peak = *signal;
  content.toneMapApplies = CHR::IsToneMappingApplicable(settings);
  content.gamutApplies = CHR::IsGamutCompressionApplicable(content.settings);
  return std::nullopt;
}

Error UntoldColors(const Source& source) {
  return {Code::UnknownColors,
          "the source does not say which colour space it is in (" +
              DescribeColorSpace(source.colors) + ")",
          {}};
}

}  // namespace

ColorSpace MappingColorSpace(const ColorDescription& tagged, const Target& target,
                             const Settings& settings) {
  if (WorksInTarget(tagged, target, settings)) return LinearLight(target.colors);
  ColorDescription source;
  source.transfer = tagged.transfer;
  source.primaries = tagged.primaries;
  source.chromaticities = tagged.chromaticities;
  const bool linear = tagged.transfer == RefHost::kTransferLinear;
  // Scene-linear and PQ pictures are mapped in BT.2020 primaries whatever their container, so that
  // one colour maps alike from every file.
  if (linear || tagged.transfer == RefHost::kTransferPQ) {
    source.primaries = RefHost::kPrimariesBT2020;
    source.chromaticities = {};
  }
  // BT.2390 takes full scale for the source's peak, which linear light has not.
  if (linear && IsBt2390(settings.algorithm)) source.transfer = RefHost::kTransferPQ;
  return ColorSpace(source);
}

bool IsConvertible(const ColorDescription& description) {
  ColorDescription light;
  light.primaries = RefHost::kPrimariesBT709;
  light.transfer = RefHost::kTransferLinear;
  constexpr int kAnyWhite = 203;
  return ConvertGrey(0.0F, ColorSpace(description), ColorSpace(light), kAnyWhite).has_value();
}

Result<Plan> Plan::Make(const Source& source, const Target& target, const Settings& settings,
                        std::shared_ptr<Device> device) {
  if (!TellsColors(source.colors)) return UntoldColors(source);
  auto peak = MetadataPeak(source);
  if (!peak) peak = NominalPeak(BelieveLight(source).source.colors, settings.white);
  if (!peak) {
    return Error{Code::UnknownPeak,
                 "nothing says how bright " + DescribeColorSpace(source.colors) +
                     " gets; measure the picture, or give a peak",
                 {}};
  }
  return Make(source, target, settings, *peak, std::move(device));
}

Result<Plan> Plan::Make(const Source& source, const Target& target, const Settings& settings,
                        const SourcePeak& peak, std::shared_ptr<Device> device) {
  if (!TellsColors(source.colors)) return UntoldColors(source);
  if (!IsConvertible(source.colors)) {
    return Error{Code::NotSupported, "no conversion from " + DescribeColorSpace(source.colors), {}};
  }
  const ColorSpace from = MappingColorSpace(source.colors, target, settings);
  const ColorSpace to = DestinationSpace(target);
  if (!ConvertGrey(0.0F, from, to, settings.white)) {
    return Error{Code::NotSupported,
                 "no conversion to " + DescribeColorSpace(to.Description()) + "; choose one of " +
                     ColorSpaceNames(),
                 {}};
  }
  auto content = std::make_shared<Content>();
  content->source = source;
  content->asked = settings;
  content->device = std::move(device);
  content->settings.algorithmType = settings.gamut;
  content->settings.toneMapSettings = ToneMapSettingsFor(settings, from, to);
  content->destinationPeakNits = DestinationPeakNits(to, settings.white);
  if (settings.fit != GamutFitting::Clip && MayLackColors(source.colors, to)) {
    const DefaultFloatingPoint mode;
    content->fit = MakeGamutFit(to, content->destinationPeakNits, settings.white);
  }
  const ColorSpace light = LinearLight(target.colors);
  const bool isLight = content->fit != nullptr || from.Description() == light.Description();
  content->result = isLight ? light : to;
  if (auto failure = SetPeak(*content, peak)) return *std::move(failure);
  return Plan(std::move(content));
}

Result<Plan> Plan::WithPeak(double nits) const {
  auto content = std::make_shared<Content>(*content_);
  if (auto failure = SetPeak(*content, {nits, content_->peak.origin})) return *std::move(failure);
  return Plan(std::move(content));
}

}  // namespace Quillon::Mapper
