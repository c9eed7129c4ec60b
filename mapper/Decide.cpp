#include "curves/St2084.h"
#include "mapper/Content.h"
#include "tonemap/Algorithms.h"
#include "tonemap/SupportParams.h"

using PX::ToneMappingUtils::ToneMapSettings;

namespace Quillon::Mapper {

namespace {

std::string NameWithUnit(const ParamEntry& entry) {
  std::string name(entry.name);
  if (entry.unit == Unit::PQCode) name += " (PQ)";
  if (entry.unit == Unit::Nits) name += " (nits)";
  return name;
}

std::optional<double> KneeNits(const ToneCurveFacts& curve, const SupportVector& params,
                               int white) {
  if (!curve.knee || params.size() <= curve.knee->entry) return std::nullopt;
  const double knee = params[curve.knee->entry];
  switch (curve.entries[curve.knee->entry].unit) {
    case Unit::Linear:
      return knee * white;
    case Unit::PQShare:
      if (!(knee > 0.0 && knee < 1.0)) return std::nullopt;
      return DecodeSt2084(Bt2390CodeValue(params, knee));
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
  decision.adjustedPeak = resolved.controls.peak;
  const ToneCurveFacts* const curve = FindToneCurve(resolved.algorithmType);
  if (curve == nullptr) return decision;
  for (std::size_t i = 0; i < params.size(); ++i) {
    decision.parameters.push_back({NameWithUnit(curve->entries[i]), params[i]});
  }
  decision.kneeNits = KneeNits(*curve, params, content.asked.white);
  return decision;
}

}  // namespace

Decisions Plan::Decide() const {
  Decisions decisions;
  decisions.source = content_->source.colors;
  decisions.mappedFrom = content_->SourceSpace().Description();
  decisions.destination = content_->DestinationSpace().Description();
  decisions.device = DeviceName(content_->device.get());
  decisions.settings = content_->asked;
  const auto& controls = content_->settings.toneMapSettings.controls;
  decisions.gain = controls.peakGain;
  decisions.colorPreservation = controls.colorPreservation;
  decisions.sourcePeak = content_->peak;
  decisions.curvePeakNits = content_->curvePeakNits;
  decisions.sourcePeakSignal = controls.peak;
  decisions.destinationPeakNits = content_->destinationPeakNits;
  decisions.gamut =
      PX::GamutMappingUtils::GetGamutCompressionMethodName(content_->settings.algorithmType, 1);
  decisions.gamutApplies = content_->gamutApplies;
  decisions.fitApplies = content_->fit != nullptr;
  if (content_->toneMapApplies) decisions.toneMap = DecideToneMap(*content_);
  return decisions;
}

}  // namespace Quillon::Mapper
