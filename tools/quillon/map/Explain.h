#pragma once

#include <ostream>

#include "tools/quillon/MapPlan.h"
#include "tools/quillon/map/MapOptions.h"

/// Writes everything that was resolved for a picture: colour spaces, peaks in nits and in linear
/// light, white, algorithm and knee after the automatic choice, and the curve's support parameters
/// by name.
void ExplainPlan(std::ostream& out, const MapPlan& plan);

/// Tells the user of options that have no effect on what was planned.
void NoteOptionsWithoutEffect(std::ostream& notes, const MapOptions& options, const MapPlan& plan);
