#include "tools/quillon/ResolvedToneMap.h"

#include "curves/St2084.h"
#include "tonemap/SupportParams.h"

using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

/// Knee start in PQ code values, as nits.
std::optional<double> Bt2390KneeNits(const Quillon::SupportVector& params) {
  if (params.size() < 9) return std::nullopt;
  const double sourceBlack = params[0];
  const double sourceRange = params[5];
  const double kneeStart = params[8];
  if (!(kneeStart > 0.0 && kneeStart < 1.0)) return std::nullopt;
  return DecodeSt2084(sourceBlack + kneeStart * sourceRange);
}

}  // namespace

ResolvedToneMap ResolveToneMap(const MapPlan& plan) {
  ResolvedToneMap toneMap{plan.settings.toneMapSettings, {}};
  Quillon::GetToneMappingSupportParams(toneMap.settings, toneMap.params);
  return toneMap;
}

std::optional<double> KneeNits(const ResolvedToneMap& toneMap, int white) {
  const Quillon::SupportVector& params = toneMap.params;
  switch (toneMap.settings.algorithmType) {
    case ToneMapAlgorithmType::ITU2390MaxRGB:
    case ToneMapAlgorithmType::ITU2390RGBByChannel:
      return Bt2390KneeNits(params);
    case ToneMapAlgorithmType::HuePreservationDesaturation:
      return params.size() > 1 ? std::optional(double{params[1]} * white) : std::nullopt;
    case ToneMapAlgorithmType::CARToneCurve:
      return params.empty() ? std::nullopt : std::optional(double{params[0]} * white);
    default:
      return std::nullopt;
  }
}
