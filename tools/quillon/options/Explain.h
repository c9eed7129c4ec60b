#pragma once

#include <ostream>

#include "mapper/Plan.h"
#include "tools/quillon/options/MappingOptions.h"

namespace Quillon::Cli {

/// Writes everything that was resolved for a picture: colour spaces, peaks in nits and in linear
/// light, white, algorithm and knee after the automatic choice, and the curve's support parameters
/// by name.
void Explain(std::ostream& out, const Mapper::Decisions& decisions);

/// Tells the user of options that have no effect on what was planned.
void NoteOptionsWithoutEffect(std::ostream& notes, const MappingOptions& options,
                              const Mapper::Decisions& decisions);

/// Warns of light levels of the source that cannot be, and says what is taken instead.
void WarnOfLight(std::ostream& notes, const Mapper::Source& source,
                 const Mapper::Decisions& decisions);

}  // namespace Quillon::Cli
