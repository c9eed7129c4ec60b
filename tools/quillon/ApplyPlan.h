#pragma once

#include <string>

#include "tools/quillon/MapPlan.h"

/// The planned picture as the engine maps it: a new float BGRA frame in the destination's colour
/// space. `name` is what messages call the picture. Throws CommandError when the engine refuses.
PX::VideoFrameRef ApplyPlan(const MapPlan& plan, const std::string& name);
