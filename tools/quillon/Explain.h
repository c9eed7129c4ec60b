#pragma once

#include <ostream>

#include "tools/quillon/MapPlan.h"

/// Writes everything that was resolved for a picture: colour spaces, peaks in nits and in linear
/// light, white, algorithm and knee after the automatic choice, and the curve's support parameters
/// by name.
void ExplainPlan(std::ostream& out, const MapPlan& plan);

/// A sentence where options of the curve were given and nothing is tone mapped.
void NoteOptionsWithoutEffect(std::ostream& notes, const MapOptions& options, const MapPlan& plan);
