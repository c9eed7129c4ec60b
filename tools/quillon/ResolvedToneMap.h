#pragma once

#include <optional>

#include "base/SupportVector.h"
#include "tools/quillon/MapPlan.h"

/// A plan's tone map as the engine resolves it: what the automatic choice gives, the peak in the
/// curve's own scale, and the curve's support parameters.
struct ResolvedToneMap {
  PX::ToneMappingUtils::ToneMapSettings settings;
  Quillon::SupportVector params;
};

/// For plans whose tone map applies.
ResolvedToneMap ResolveToneMap(const MapPlan& plan);

/// Luminance in nits at which the curve leaves the straight line, gain applied. Nothing for a curve
/// without a knee and for a BT.2390 curve whose knee start lies outside of 0 to 1.
std::optional<double> KneeNits(const ResolvedToneMap& toneMap, int white);
