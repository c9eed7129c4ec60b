#include <array>
#include <span>
#include <string_view>

#include "curves/St2084.h"
#include "mapper/Content.h"
#include "tonemap/SupportParams.h"

using PX::ToneMappingUtils::ToneMapSettings;

namespace Quillon::Mapper {

namespace {

constexpr std::array<std::string_view, 13> kItu2390Names = {"source black (PQ)",
                                                            "source peak (PQ)",
                                                            "destination black (PQ)",
                                                            "destination peak (PQ)",
                                                            "reference white (nits)",
                                                            "source range (PQ)",
                                                            "normalised destination black, minLum",
                                                            "normalised destination peak, maxLum",
                                                            "knee start KS",
                                                            "knee start over reference white",
                                                            "red luminance weight",
                                                            "green luminance weight",
                                                            "blue luminance weight"};
constexpr std::array<std::string_view, 4> kItu2446ANames = {
    "rho of the HDR peak", "rho of the SDR peak", "input scale", "SDR peak over reference white"};
constexpr std::array<std::string_view, 3> kHueNames = {"scaled source peak", "knee",
                                                       "destination peak"};
constexpr std::array<std::string_view, 7> kCarNames = {
    "knee point",           "coefficient A",          "coefficient B",        "destination peak",
    "red luminance weight", "green luminance weight", "blue luminance weight"};

std::span<const std::string_view> ParameterNames(Algorithm algorithm) {
  switch (algorithm) {
    case Algorithm::ITU2390MaxRGB:
    case Algorithm::ITU2390RGBByChannel:
      return kItu2390Names;
    case Algorithm::ITU2446A:
      return kItu2446ANames;
    case Algorithm::CARToneCurve:
      return kCarNames;
    default:
      return kHueNames;
  }
}

/// Knee start in PQ code values, as nits; nothing where it lies outside of 0 to 1.
std::optional<double> Bt2390KneeNits(const SupportVector& params) {
  if (params.size() < 9) return std::nullopt;
  const double sourceBlack = params[0];
  const double sourceRange = params[5];
  const double kneeStart = params[8];
  if (!(kneeStart > 0.0 && kneeStart < 1.0)) return std::nullopt;
  return DecodeSt2084(sourceBlack + kneeStart * sourceRange);
}

std::optional<double> KneeNits(Algorithm algorithm, const SupportVector& params, int white) {
  switch (algorithm) {
    case Algorithm::ITU2390MaxRGB:
    case Algorithm::ITU2390RGBByChannel:
      return Bt2390KneeNits(params);
    case Algorithm::HuePreservationDesaturation:
      return params.size() > 1 ? std::optional(double{params[1]} * white) : std::nullopt;
    case Algorithm::CARToneCurve:
      return params.empty() ? std::nullopt : std::optional(double{params[0]} * white);
    default:
      return std::nullopt;
  }
}

/// The tone map as the engine resolves it.
ToneMapDecision DecideToneMap(const Plan::Content& content) {
  ToneMapSettings resolved = content.settings.toneMapSettings;
  SupportVector params;
  GetToneMappingSupportParams(resolved, params);

  ToneMapDecision decision;
  decision.algorithm = resolved.algorithmType;
  decision.name =
      PX::ToneMappingUtils::GetLocalizedToneMappingMethodName(resolved.algorithmType, 1);
  decision.chosenAutomatically = resolved.algorithmType != content.asked.algorithm;
  if (HasKnee(resolved.algorithmType)) decision.knee = resolved.knee;
  decision.gain = resolved.controls.peakGain;
  decision.colorPreservation = resolved.controls.colorPreservation;
  decision.adjustedPeak = resolved.controls.peak;
  const auto names = ParameterNames(resolved.algorithmType);
  for (std::size_t i = 0; i < params.size() && i < names.size(); ++i) {
    decision.parameters.push_back({std::string(names[i]), params[i]});
  }
  decision.kneeNits = KneeNits(resolved.algorithmType, params, content.asked.white);
  return decision;
}

}  // namespace

bool HasKnee(Algorithm algorithm) {
  return algorithm == Algorithm::HuePreservationDesaturation ||
         algorithm == Algorithm::CARToneCurve;
}

Decisions Plan::Decide() const {
  Decisions decisions;
  decisions.source = content_->source.colors;
  decisions.mappedFrom = content_->SourceSpace().Description();
  decisions.destination = content_->DestinationSpace().Description();
  decisions.device = DeviceName(content_->device.get());
  decisions.settings = content_->asked;
  decisions.sourcePeak = content_->peak;
  decisions.sourcePeakSignal = content_->settings.toneMapSettings.controls.peak;
  decisions.destinationPeakNits = content_->destinationPeakNits;
  decisions.gamut =
      PX::GamutMappingUtils::GetGamutCompressionMethodName(content_->settings.algorithmType, 1);
  decisions.gamutApplies = content_->gamutApplies;
  if (content_->toneMapApplies) decisions.toneMap = DecideToneMap(*content_);
  return decisions;
}

}  // namespace Quillon::Mapper
