#pragma once

#include <ostream>

#include "mapper/Plan.h"
#include "tools/quillon/options/MappingOptions.h"

/// Writes everything that was resolved for a picture: colour spaces, peaks in nits and in linear
/// light, white, algorithm and knee after the automatic choice, and the curve's support parameters
/// by name.
void Explain(std::ostream& out, const Quillon::Mapper::Decisions& decisions);

/// Tells the user of options that have no effect on what was planned.
void NoteOptionsWithoutEffect(std::ostream& notes, const MappingOptions& options,
                              const Quillon::Mapper::Decisions& decisions);
