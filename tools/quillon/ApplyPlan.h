#pragma once

#include <string>

#include "tools/quillon/MapPlan.h"

/// The planned picture as the engine maps it: a new float BGRA frame in the destination's colour
/// space. `name` is what messages call the picture. Throws CommandError when the engine refuses.
PX::VideoFrameRef ApplyPlan(const MapPlan& plan, const std::string& name);

/// Maps one picture of a clip into `destination`, whatever the formats of both, as `ApplyPlan` maps
/// a still: the same bits on the processor and on a GPU. `source` is in the colour space of the
/// plan's source but for matrix and range, and is tagged so here. Throws CommandError.
void ApplyPlanTo(const MapPlan& plan, const std::string& name, const PX::VideoFrameRef& source,
                 PX::VideoFrameRef& destination);
