#include "tools/quillon/ResolvedToneMap.h"

#include "curves/St2084.h"
#include "tonemap/Algorithms.h"
#include "tonemap/SupportParams.h"

ResolvedToneMap ResolveToneMap(const MapPlan& plan) {
  ResolvedToneMap toneMap{plan.settings.toneMapSettings, {}};
  Quillon::GetToneMappingSupportParams(toneMap.settings, toneMap.params);
  return toneMap;
}

std::optional<double> KneeNits(const ResolvedToneMap& toneMap, int white) {
  const Quillon::SupportVector& params = toneMap.params;
  const auto* curve = Quillon::FindToneCurve(toneMap.settings.algorithmType);
  if (curve == nullptr || !curve->knee || params.size() <= curve->knee->entry) return std::nullopt;
  const double knee = params[curve->knee->entry];
  switch (curve->entries[curve->knee->entry].unit) {
    case Quillon::Unit::Linear:
      return knee * white;
    case Quillon::Unit::PqShare:
      if (!(knee > 0.0 && knee < 1.0)) return std::nullopt;
      return DecodeSt2084(Quillon::Itu2390CodeValue(params, knee));
    default:
      return std::nullopt;
  }
}
